// SPDX-License-Identifier: MIT
#include "support/live_memory.hpp"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> live{0};
std::atomic<std::size_t> given{0};

}  // namespace

void* operator new(std::size_t size) {
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  live += malloc_usable_size(memory);
  ++given;
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) {
    live -= malloc_usable_size(memory);
    std::free(memory);
  }
}

void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}

namespace vantora::test {

std::size_t liveBytes() {
  return live;
}

std::size_t allocations() {
  return given;
}

}  // namespace vantora::test
