// SPDX-License-Identifier: MIT
#include "objc/fault.hpp"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace standin {

void fault(const char* format, ...) {
  std::fputs("stand-in: ", stderr);
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::fputc('\n', stderr);
  std::abort();
}

}  // namespace standin
