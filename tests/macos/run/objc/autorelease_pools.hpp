// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "objc/abi.hpp"

namespace standin {

/// Releases the object when the calling thread's innermost pool is popped. Without a pool
/// nothing ever would: a fault.
Object* autorelease(Object* object);

/// How many objects wait in the pools of the calling thread.
[[nodiscard]] std::size_t pooledObjects();

/// Empties every pool of the calling thread, as at the end of the program, so that what is
/// alive afterwards is what has an owner.
void drainAllPools();

}  // namespace standin
