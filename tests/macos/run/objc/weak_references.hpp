// SPDX-License-Identifier: MIT
#pragma once

#include "objc/abi.hpp"

namespace standin {

/// Sets every weak reference to the object to nil. Called as its destruction begins.
void clearWeakReferencesTo(Object* object);

/// A new reference, unless the object is being destroyed.
[[nodiscard]] Object* retainUnlessDying(Object* object);

}  // namespace standin
