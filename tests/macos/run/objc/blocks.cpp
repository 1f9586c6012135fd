// SPDX-License-Identifier: MIT
#include "objc/blocks.hpp"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "objc/objects.hpp"

extern "C" {
void* _NSConcreteStackBlock[32];
void* _NSConcreteGlobalBlock[32];
void* _NSConcreteMallocBlock[32];
}

namespace standin {
namespace {

struct Descriptor {
  unsigned long reserved;
  unsigned long size;
  void (*copy)(void* to, void* from);
  void (*dispose)(void* block);
};

struct Block {
  void* isa;
  int flags;
  int reserved;
  void (*invoke)();
  Descriptor* descriptor;
};

constexpr int hasHelpers = 1 << 25;
constexpr int isGlobal = 1 << 28;
constexpr int isOnHeap = 1 << 24;
constexpr int oneReference = 2;  // the count has the low 16 bits but the lowest
constexpr int countMask = 0xfffe;

std::atomic<long> living;

std::atomic_ref<int> flagsOf(Block* block) {
  return std::atomic_ref<int>(block->flags);
}

}  // namespace

bool isBlock(const Object* object) {
  const void* isa = object->isa;
  return isa == _NSConcreteStackBlock || isa == _NSConcreteGlobalBlock ||
         isa == _NSConcreteMallocBlock;
}

void* copyBlock(const void* pointer) {
  auto* block = const_cast<Block*>(static_cast<const Block*>(pointer));
  if ((block->flags & isGlobal) != 0) {
    return block;
  }
  if ((block->flags & isOnHeap) != 0) {
    flagsOf(block).fetch_add(oneReference);
    return block;
  }
  auto* copy = static_cast<Block*>(std::malloc(block->descriptor->size));
  std::memcpy(copy, block, block->descriptor->size);
  copy->isa = _NSConcreteMallocBlock;
  copy->flags = (block->flags & ~0xffff) | isOnHeap | oneReference;
  if ((block->flags & hasHelpers) != 0) {
    block->descriptor->copy(copy, block);
  }
  ++living;
  return copy;
}

void releaseBlock(const void* pointer) {
  auto* block = const_cast<Block*>(static_cast<const Block*>(pointer));
  if (block == nullptr || (block->flags & isOnHeap) == 0) {
    return;
  }
  if (((flagsOf(block).fetch_sub(oneReference) - oneReference) & countMask) != 0) {
    return;
  }
  if ((block->flags & hasHelpers) != 0) {
    block->descriptor->dispose(block);
  }
  std::free(block);
  --living;
}

long livingBlocks() {
  return living;
}

extern "C" {

void* _Block_copy(const void* block) {
  return copyBlock(block);
}
void _Block_release(const void* block) {
  releaseBlock(block);
}
void _Block_object_assign(void* place, const void* object, int) {
  *static_cast<void**>(place) = retain(static_cast<Object*>(const_cast<void*>(object)));
}
void _Block_object_dispose(const void* object, int) {
  release(static_cast<Object*>(const_cast<void*>(object)));
}
Object* objc_retainBlock(Object* block) {
  return block != nullptr ? static_cast<Object*>(copyBlock(block)) : nullptr;
}

}  // extern "C"
}  // namespace standin
