// SPDX-License-Identifier: MIT
#include "objc/class_table.hpp"

#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// The linker's names for the ends of the sections in which clang collects them.
extern "C" {
extern standin::Class* __start_objc_classlist[] __attribute__((weak));
extern standin::Class* __stop_objc_classlist[] __attribute__((weak));
extern standin::Category* __start_objc_catlist[] __attribute__((weak));
extern standin::Category* __stop_objc_catlist[] __attribute__((weak));
extern standin::Selector __start_objc_selrefs[] __attribute__((weak));
extern standin::Selector __stop_objc_selrefs[] __attribute__((weak));

void* _objc_empty_cache[2];
void* _objc_empty_vtable[2];
// What the isa of every constant string refers to.
standin::Class __CFConstantStringClassReference[1];
// Foundation's class of constant strings.
extern standin::Class constantStringClass __asm__("OBJC_CLASS_$_StandInConstantString");
}

namespace standin {
namespace {

using MethodTable = std::unordered_map<Selector, Implementation>;

// Read-only once loaded, but for selectors that are registered later.
struct Tables {
  std::mutex mutex;  // of `selectors`
  std::unordered_set<std::string> selectors;
  std::unordered_map<const Class*, MethodTable> methods;
  std::unordered_set<const void*> classes;
  std::unordered_set<const Class*> mainThreadFamilies;
};

Tables& tables() {
  static auto* const kept = new Tables;
  return *kept;
}

void addMethods(const Class* owner, MethodList* list) {
  if (list == nullptr) {
    return;
  }
  auto* bytes = reinterpret_cast<char*>(&list->first);
  const std::uint32_t step = list->entrySize & ~3U;
  for (std::uint32_t i = 0; i < list->count; ++i) {
    auto* method = reinterpret_cast<Method*>(bytes + std::size_t{i} * step);
    method->name = selectorNamed(method->name);
    tables().methods[owner][method->name] = method->implementation;
  }
}

// The compiler lays a class out behind what it knows of the superclass; instance variables
// that the superclass's implementation adds move it.
void moveInstanceVariables(Class* moved) {
  ClassData* data = moved->data;
  if (moved->super == nullptr || data->instanceStart >= moved->super->data->instanceSize) {
    return;
  }
  const std::uint32_t distance =
      (moved->super->data->instanceSize - data->instanceStart + 15) & ~15U;
  if (InstanceVariableList* list = data->instanceVariables) {
    for (std::uint32_t i = 0; i < list->count; ++i) {
      *(&list->first)[i].offset += distance;
    }
  }
  data->instanceStart += distance;
  data->instanceSize += distance;
}

void load(Class* loaded) {
  if (loaded == nullptr || !tables().classes.insert(loaded).second) {
    return;
  }
  load(loaded->super);
  if ((loaded->data->flags & ClassData::metaFlag) == 0) {
    moveInstanceVariables(loaded);
    load(loaded->isa);
  }
  addMethods(loaded, loaded->data->methods);
}

__attribute__((constructor(102))) void loadAll() {
  for (Selector* each = __start_objc_selrefs; each != __stop_objc_selrefs; ++each) {
    *each = selectorNamed(*each);
  }
  for (Class** each = __start_objc_classlist; each != __stop_objc_classlist; ++each) {
    load(*each);
  }
  for (Category** each = __start_objc_catlist; each != __stop_objc_catlist; ++each) {
    addMethods((*each)->extended, (*each)->instanceMethods);
    addMethods((*each)->extended->isa, (*each)->classMethods);
  }
  __CFConstantStringClassReference[0] = constantStringClass;
}

}  // namespace

Selector selectorNamed(const char* name) {
  const std::lock_guard lock(tables().mutex);
  return tables().selectors.insert(name).first->c_str();
}

Implementation ownMethod(const Class* of, Selector selector) {
  const auto table = tables().methods.find(of);
  if (table == tables().methods.end()) {
    return nullptr;
  }
  const auto method = table->second.find(selector);
  return method != table->second.end() ? method->second : nullptr;
}

Implementation findMethod(const Class* start, Selector selector) {
  const Class* each = start == __CFConstantStringClassReference ? &constantStringClass : start;
  for (; each != nullptr; each = each->super) {
    if (const Implementation method = ownMethod(each, selector)) {
      return method;
    }
  }
  return nullptr;
}

bool isClass(const void* pointer) {
  return tables().classes.contains(pointer);
}

bool isConstantString(const Object* object) {
  return object->isa == __CFConstantStringClassReference;
}

Class* classOf(const Object* object) {
  return isConstantString(object) ? &constantStringClass : object->isa;
}

bool isKindOf(const Object* object, const Class* wanted) {
  for (const Class* each = classOf(object); each != nullptr; each = each->super) {
    if (each == wanted) {
      return true;
    }
  }
  return false;
}

const char* signOf(const Class* receiver) {
  return (receiver->data->flags & ClassData::metaFlag) != 0 ? "+" : "-";
}

void bindToMainThread(Class* family) {
  tables().mainThreadFamilies.insert(family);
}

bool isBoundToMainThread(const Class* receiver) {
  if (tables().mainThreadFamilies.empty()) {
    return false;
  }
  for (const Class* each = receiver; each != nullptr; each = each->super) {
    if (tables().mainThreadFamilies.contains(each)) {
      return true;
    }
  }
  return false;
}

}  // namespace standin

extern "C" {
standin::Selector sel_registerName(const char* name) {
  return standin::selectorNamed(name);
}
const char* sel_getName(standin::Selector selector) {
  return selector;
}
}
