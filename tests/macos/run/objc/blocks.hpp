// SPDX-License-Identifier: MIT
#pragma once

#include "objc/abi.hpp"

namespace standin {

/// Blocks are objects, with memory and references of their own (clang's "Block
/// Implementation Specification").
[[nodiscard]] bool isBlock(const Object* object);

/// A block that outlives the frame that made it: one on the heap, or one more reference.
void* copyBlock(const void* block);
void releaseBlock(const void* block);

[[nodiscard]] long livingBlocks();

}  // namespace standin
