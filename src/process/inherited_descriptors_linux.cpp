// SPDX-License-Identifier: MIT
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>

#include "process/spawn_program.hpp"

namespace vantora {

void keepDescriptorsFromChildren() {
  if (close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC) == 0) {
    return;
  }
  // Linux before 5.11.
  const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir("/proc/self/fd"), &::closedir);
  while (const dirent* entry = open ? ::readdir(open.get()) : nullptr) {
    if (const int descriptor = std::atoi(entry->d_name); descriptor > STDERR_FILENO) {
      fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
  }
}

}  // namespace vantora
