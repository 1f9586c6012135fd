// SPDX-License-Identifier: MIT
#include "platform/linux/text/freed_memory.hpp"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace vantora {

void returnFreedMemory() {
#ifdef __GLIBC__
  // Other C libraries return pages by themselves.
  malloc_trim(0);
#endif
}

}  // namespace vantora
