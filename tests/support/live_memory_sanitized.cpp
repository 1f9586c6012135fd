// SPDX-License-Identifier: MIT
//
// Sanitizers bring operators of their own, and count.
#include <sanitizer/allocator_interface.h>

#include "support/live_memory.hpp"

namespace vantora::test {

std::size_t liveBytes() {
  return __sanitizer_get_current_allocated_bytes();
}

}  // namespace vantora::test
