// SPDX-License-Identifier: MIT
//
// Memory and references of objects, with a census of what is alive.
#pragma once

#include <map>
#include <string>

#include "objc/abi.hpp"

namespace standin {

/// An object of the class with one reference, its C++ members constructed.
[[nodiscard]] Object* allocate(Class* type);

Object* retain(Object* object);
/// Destroys the object with its last reference. One reference too many is a fault.
void release(Object* object);

/// Whether the memory is that of an object that was destroyed lately: it is kept a while, so
/// that late messages are seen. Under AddressSanitizer that one sees them.
[[nodiscard]] bool isDead(const Object* object);
[[nodiscard]] const char* nameOfDead(const Object* object);

/// The number of living objects of each class that has any.
[[nodiscard]] std::map<std::string, long> census();
[[nodiscard]] long livingObjects();

}  // namespace standin
