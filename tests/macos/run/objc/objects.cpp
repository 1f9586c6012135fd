// SPDX-License-Identifier: MIT
#include "objc/objects.hpp"

#include <atomic>
#include <cstdlib>
#include <deque>
#include <mutex>

#include "objc/blocks.hpp"
#include "objc/class_table.hpp"
#include "objc/fault.hpp"
#include "objc/weak_references.hpp"

namespace standin {
namespace {

struct Header {
  std::atomic<long> references;
  Class* type;  // also of a dead one
};

Header* headerOf(const Object* object) {
  return reinterpret_cast<Header*>(const_cast<Object*>(object)) - 1;
}

struct Census {
  std::mutex mutex;
  std::map<std::string, long> living;
  long total = 0;
  std::deque<Header*> dead;
};

Census& kept() {
  static auto* const only = new Census;
  return *only;
}

// The isa of a dead object.
Class deadClass;

constexpr bool isAddressSanitized =
#if __has_feature(address_sanitizer)
    true;
#else
    false;
#endif
constexpr std::size_t maxDead = 10'000;

void count(const Class* type, long change) {
  const std::lock_guard lock(kept().mutex);
  kept().total += change;
  kept().living[type->data->name] += change;
}

// C++ members, the superclass's first.
void construct(const Class* type, Object* object) {
  if (type == nullptr) {
    return;
  }
  construct(type->super, object);
  static const Selector constructor = selectorNamed(".cxx_construct");
  if (const Implementation method = ownMethod(type, constructor)) {
    reinterpret_cast<Object* (*)(Object*, Selector)>(method)(object, constructor);
  }
}

// C++ members and strong references, the superclass's last.
void destruct(Object* object) {
  static const Selector destructor = selectorNamed(".cxx_destruct");
  for (const Class* type = object->isa; type != nullptr; type = type->super) {
    if (const Implementation method = ownMethod(type, destructor)) {
      reinterpret_cast<void (*)(Object*, Selector)>(method)(object, destructor);
    }
  }
}

void bury(Object* object) {
  Header* header = headerOf(object);
  if (isAddressSanitized) {
    std::free(header);
    return;
  }
  object->isa = &deadClass;
  const std::lock_guard lock(kept().mutex);
  kept().dead.push_back(header);
  if (kept().dead.size() > maxDead) {
    std::free(kept().dead.front());
    kept().dead.pop_front();
  }
}

void destroy(Object* object) {
  Class* type = object->isa;
  clearWeakReferencesTo(object);
  static const Selector dealloc = selectorNamed("dealloc");
  if (const Implementation method = findMethod(type, dealloc)) {
    reinterpret_cast<void (*)(Object*, Selector)>(method)(object, dealloc);
  }
  destruct(object);
  count(type, -1);
  bury(object);
}

bool isUncounted(const Object* object) {
  return isClass(object) || isConstantString(object);
}

}  // namespace

Object* allocate(Class* type) {
  void* memory = std::calloc(1, sizeof(Header) + type->data->instanceSize);
  if (memory == nullptr) {
    std::abort();
  }
  auto* header = new (memory) Header{1, type};
  auto* object = reinterpret_cast<Object*>(header + 1);
  object->isa = type;
  construct(type, object);
  count(type, 1);
  return object;
}

Object* retain(Object* object) {
  if (object == nullptr || isUncounted(object)) {
    return object;
  }
  if (isBlock(object)) {
    return static_cast<Object*>(copyBlock(object));
  }
  if (isDead(object)) {
    fault("an object of class %s that is gone is retained", nameOfDead(object));
  }
  headerOf(object)->references.fetch_add(1);
  return object;
}

void release(Object* object) {
  if (object == nullptr || isUncounted(object)) {
    return;
  }
  if (isBlock(object)) {
    releaseBlock(object);
    return;
  }
  if (isDead(object)) {
    fault("an object of class %s is released once more than it was retained", nameOfDead(object));
  }
  if (headerOf(object)->references.fetch_sub(1) == 1) {
    destroy(object);
  }
}

// A reference from a weak one, or none when the object is being destroyed.
Object* retainUnlessDying(Object* object) {
  if (object == nullptr || isUncounted(object)) {
    return object;
  }
  std::atomic<long>& references = headerOf(object)->references;
  for (long seen = references; seen > 0;) {
    if (references.compare_exchange_weak(seen, seen + 1)) {
      return object;
    }
  }
  return nullptr;
}

bool isDead(const Object* object) {
  return object->isa == &deadClass;
}

const char* nameOfDead(const Object* object) {
  return headerOf(object)->type->data->name;
}

std::map<std::string, long> census() {
  const std::lock_guard lock(kept().mutex);
  std::map<std::string, long> living = kept().living;
  std::erase_if(living, [](const auto& each) { return each.second == 0; });
  return living;
}

long livingObjects() {
  const std::lock_guard lock(kept().mutex);
  return kept().total;
}

}  // namespace standin
