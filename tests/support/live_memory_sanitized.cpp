// SPDX-License-Identifier: MIT
//
// Sanitizers bring operators of their own, and count.
#include <sanitizer/allocator_interface.h>

#include <atomic>

#include "support/live_memory.hpp"

namespace vantora::test {
namespace {

std::atomic<std::size_t> given{0};
const int hooks = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { ++given; }, [](const volatile void*) {});

}  // namespace

std::size_t liveBytes() {
  return __sanitizer_get_current_allocated_bytes();
}

std::size_t allocations() {
  static_cast<void>(hooks);
  return given;
}

}  // namespace vantora::test
