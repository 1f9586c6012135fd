// SPDX-License-Identifier: MIT
//
// What clang calls for references, properties and the commonest messages (its "Objective-C
// Automatic Reference Counting", section "Runtime support").
#include <cstddef>

#include "objc/autorelease_pools.hpp"
#include "objc/class_table.hpp"
#include "objc/fault.hpp"
#include "objc/objects.hpp"

namespace standin {
namespace {

template <typename Result, typename Receiver>
Result send(Receiver* receiver, const char* name) {
  const Selector selector = selectorNamed(name);
  const auto* object = reinterpret_cast<const Object*>(receiver);
  const Implementation method = findMethod(classOf(object), selector);
  if (method == nullptr) {
    fault("-[%s %s]: unrecognized selector", classOf(object)->data->name, name);
  }
  return reinterpret_cast<Result (*)(Receiver*, Selector)>(method)(receiver, selector);
}

Object** placeIn(Object* object, std::ptrdiff_t offset) {
  return reinterpret_cast<Object**>(reinterpret_cast<char*>(object) + offset);
}

}  // namespace

extern "C" {

Object* objc_retain(Object* object) {
  return retain(object);
}
void objc_release(Object* object) {
  release(object);
}
Object* objc_retainAutoreleasedReturnValue(Object* object) {
  return retain(object);
}
Object* objc_unsafeClaimAutoreleasedReturnValue(Object* object) {
  return object;
}

void objc_storeStrong(Object** place, Object* object) {
  Object* old = *place;
  *place = retain(object);
  release(old);
}

Object* objc_alloc(Class* type) {
  return send<Object*>(type, "alloc");
}
Object* objc_alloc_init(Class* type) {
  return send<Object*>(objc_alloc(type), "init");
}
Object* objc_opt_new(Class* type) {
  return objc_alloc_init(type);
}
Class* objc_opt_class(Object* object) {
  if (object == nullptr) {
    return nullptr;
  }
  return isClass(object) ? reinterpret_cast<Class*>(object) : classOf(object);
}
Object* objc_opt_self(Object* object) {
  return object;
}
bool objc_opt_isKindOfClass(Object* object, Class* wanted) {
  return object != nullptr && isKindOf(object, wanted);
}
bool objc_opt_respondsToSelector(Object* object, Selector selector) {
  return object != nullptr && findMethod(classOf(object), selector) != nullptr;
}

Object* objc_getProperty(Object* object, Selector, std::ptrdiff_t offset, bool) {
  return autorelease(retain(*placeIn(object, offset)));
}
void objc_setProperty_atomic(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
  objc_storeStrong(placeIn(object, offset), value);
}
void objc_setProperty_nonatomic(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
  objc_storeStrong(placeIn(object, offset), value);
}
void objc_setProperty_atomic_copy(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
  objc_storeStrong(placeIn(object, offset), value);
}
void objc_setProperty_nonatomic_copy(Object* object, Selector, Object* value,
                                     std::ptrdiff_t offset) {
  objc_storeStrong(placeIn(object, offset), value);
}

void objc_enumerationMutation(Object*) {
  fault("a collection changes while it is enumerated");
}

}  // extern "C"
}  // namespace standin
