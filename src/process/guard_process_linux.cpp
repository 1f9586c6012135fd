// SPDX-License-Identifier: MIT
#include <sys/prctl.h>
#include <unistd.h>

#include <climits>

#include "process/guard_process.hpp"

namespace vantora {

void becomeGuardProcess() {
  prctl(PR_SET_NAME, "vantora-guard", 0, 0, 0);
  if (close_range(STDIN_FILENO + 1, UINT_MAX, 0) == 0) {
    return;
  }
  // Linux before 5.9.
  for (long descriptor = sysconf(_SC_OPEN_MAX); descriptor > STDIN_FILENO; --descriptor) {
    close(static_cast<int>(descriptor));
  }
}

}  // namespace vantora
