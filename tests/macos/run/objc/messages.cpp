// SPDX-License-Identifier: MIT
//
// Which method a message means. What no class knows is a fault, and so is a message from
// another thread to what belongs to the main one.
#include <unistd.h>

#include "objc/class_table.hpp"
#include "objc/fault.hpp"
#include "objc/objects.hpp"

namespace standin {
namespace {

struct Super {
  Object* receiver;
  Class* current;
};

const char* nameOf(const Class* named) {
  return named->data->name;
}

}  // namespace

extern "C" Implementation standInMethodFor(Object* receiver, Selector selector) {
  if (isDead(receiver)) {
    fault("-%s sent to an object of class %s that is gone", selector, nameOfDead(receiver));
  }
  const Class* type = classOf(receiver);
  if (gettid() != getpid() && isBoundToMainThread(type)) {
    fault("%s[%s %s] sent from another thread than the main one", signOf(type), nameOf(type),
          selector);
  }
  if (const Implementation method = findMethod(type, selector)) {
    return method;
  }
  fault("%s[%s %s]: unrecognized selector", signOf(type), nameOf(type), selector);
}

extern "C" Implementation standInSuperMethodFor(const Super* super, Selector selector) {
  if (const Implementation method = findMethod(super->current->super, selector)) {
    return method;
  }
  fault("[super %s] in %s: unrecognized selector", selector, nameOf(super->current));
}

}  // namespace standin
