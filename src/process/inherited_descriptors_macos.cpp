// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include "process/spawn_program.hpp"

namespace vantora {

// There is no close_range; the table of a program that is not a server is small.
void keepDescriptorsFromChildren() {
  for (int descriptor = STDERR_FILENO + 1; descriptor < getdtablesize(); ++descriptor) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
}

}  // namespace vantora
