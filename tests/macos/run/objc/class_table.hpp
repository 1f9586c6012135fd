// SPDX-License-Identifier: MIT
//
// The classes, categories and selectors of the program, read once before main.
#pragma once

#include "objc/abi.hpp"

namespace standin {

/// The one pointer that identifies a selector's name.
[[nodiscard]] Selector selectorNamed(const char* name);

/// The method of the class or its nearest ancestor; null when there is none.
[[nodiscard]] Implementation findMethod(const Class* start, Selector selector);

/// The class's own method alone, which construction and destruction call level by level.
[[nodiscard]] Implementation ownMethod(const Class* of, Selector selector);

/// Whether the pointer is a class rather than an instance.
[[nodiscard]] bool isClass(const void* pointer);

/// A constant string has the address of a symbol for its class; this is the class behind.
[[nodiscard]] Class* classOf(const Object* object);
[[nodiscard]] bool isConstantString(const Object* object);

[[nodiscard]] bool isKindOf(const Object* object, const Class* wanted);

/// "-[NSMenu addItem:]": how a message is named in a fault.
[[nodiscard]] const char* signOf(const Class* receiver);

/// AppKit's classes whose instances belong to the main thread: messages to them from
/// elsewhere are faults. Set by the stand-in that declares the class, before main.
void bindToMainThread(Class* family);
[[nodiscard]] bool isBoundToMainThread(const Class* receiver);

}  // namespace standin
