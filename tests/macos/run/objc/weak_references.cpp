// SPDX-License-Identifier: MIT
//
// Weak references: the entry points of ARC (clang's document on it, "Runtime support") over
// one table of who refers to whom.
#include "objc/weak_references.hpp"

#include <mutex>
#include <unordered_map>

#include "objc/autorelease_pools.hpp"
#include "objc/objects.hpp"

namespace standin {
namespace {

struct WeakTable {
  std::recursive_mutex mutex;
  std::unordered_multimap<Object*, Object**> references;
};

WeakTable& table() {
  static auto* const only = new WeakTable;
  return *only;
}

// With the mutex.
void forget(Object** place) {
  const auto range = table().references.equal_range(*place);
  for (auto each = range.first; each != range.second; ++each) {
    if (each->second == place) {
      table().references.erase(each);
      return;
    }
  }
}

}  // namespace

void clearWeakReferencesTo(Object* object) {
  const std::lock_guard lock(table().mutex);
  const auto range = table().references.equal_range(object);
  for (auto each = range.first; each != range.second; ++each) {
    *each->second = nullptr;
  }
  table().references.erase(object);
}

extern "C" {

Object* objc_initWeak(Object** place, Object* object) {
  const std::lock_guard lock(table().mutex);
  *place = object;
  if (object != nullptr) {
    table().references.emplace(object, place);
  }
  return object;
}

void objc_destroyWeak(Object** place) {
  const std::lock_guard lock(table().mutex);
  forget(place);
  *place = nullptr;
}

Object* objc_storeWeak(Object** place, Object* object) {
  const std::lock_guard lock(table().mutex);
  forget(place);
  return objc_initWeak(place, object);
}

Object* objc_loadWeakRetained(Object** place) {
  const std::lock_guard lock(table().mutex);
  return retainUnlessDying(*place);
}

Object* objc_loadWeak(Object** place) {
  return autorelease(objc_loadWeakRetained(place));
}

void objc_copyWeak(Object** to, Object** from) {
  const std::lock_guard lock(table().mutex);
  objc_initWeak(to, *from);
}

void objc_moveWeak(Object** to, Object** from) {
  const std::lock_guard lock(table().mutex);
  objc_initWeak(to, *from);
  objc_destroyWeak(from);
}

}  // extern "C"
}  // namespace standin
