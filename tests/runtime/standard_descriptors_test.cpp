// SPDX-License-Identifier: MIT
#include "runtime/standard_descriptors.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace vantora {
namespace {

// Whether the check holds in a child of ours, which may lose its streams.
bool holdsInAChild(const std::function<bool()>& check) {
  const pid_t child = fork();
  if (child == 0) {
    _exit(check() ? 0 : 1);
  }
  int status = -1;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(StandardDescriptors, PutANullDeviceWhereTheCallerClosedOne) {
  for (int closed = 1; closed < 8; ++closed) {
    EXPECT_TRUE(holdsInAChild([closed] {
      for (int descriptor = 0; descriptor < 3; ++descriptor) {
        if ((closed >> descriptor & 1) != 0) {
          close(descriptor);
        }
      }
      StandardDescriptors::openMissing();
      return StandardDescriptors::isOpen(0) && StandardDescriptors::isOpen(1) &&
             StandardDescriptors::isOpen(2) && open("/dev/null", O_RDONLY) > 2;
    })) << closed;
  }
}

TEST(StandardDescriptors, KeepTheOnesThatAreOpen) {
  EXPECT_TRUE(holdsInAChild([] {
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) != STDOUT_FILENO) {
      return false;
    }
    close(STDIN_FILENO);
    StandardDescriptors::openMissing();
    char letter = 0;
    return write(STDOUT_FILENO, "a", 1) == 1 && read(ends[0], &letter, 1) == 1 && letter == 'a';
  }));
}

TEST(StandardDescriptors, TellWhetherOneIsOpen) {
  EXPECT_TRUE(holdsInAChild([] {
    const bool wasOpen = StandardDescriptors::isOpen(STDERR_FILENO);
    close(STDERR_FILENO);
    return wasOpen && !StandardDescriptors::isOpen(STDERR_FILENO);
  }));
}

TEST(StandardDescriptors, TellHowManyMoreMayBeOpened) {
  EXPECT_TRUE(holdsInAChild([] {
    constexpr rlim_t limit = 20;
    const rlimit tight{limit, limit};
    close_range(3, ~0U, 0);
    return setrlimit(RLIMIT_NOFILE, &tight) == 0 && StandardDescriptors::canOpen(17) &&
           !StandardDescriptors::canOpen(18) && StandardDescriptors::canOpen(17);
  }));
}

}  // namespace
}  // namespace vantora
