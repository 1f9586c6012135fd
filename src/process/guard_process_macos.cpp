// SPDX-License-Identifier: MIT
#include <unistd.h>

#include "process/guard_process.hpp"

namespace vantora {

// There is no close_range; the table of a program that is not a server is small.
void becomeGuardProcess() {
  for (int descriptor = getdtablesize(); descriptor > STDIN_FILENO; --descriptor) {
    close(descriptor);
  }
}

}  // namespace vantora
