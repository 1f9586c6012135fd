// SPDX-License-Identifier: MIT
#include "process/guard_process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

// Where the program is linked with AddressSanitizer.
extern "C" [[gnu::weak]] void __asan_init();

namespace vantora {
namespace {

TEST(TheGuardProcess, KeepsItsInputAndNoOtherDescriptor) {
  const int held = open("/dev/null", O_RDONLY);
  const pid_t child = fork();
  if (child == 0) {
    becomeGuardProcess();
    const bool hasInput = fcntl(STDIN_FILENO, F_GETFD) >= 0;
    const bool hasOthers = fcntl(held, F_GETFD) >= 0 || fcntl(STDOUT_FILENO, F_GETFD) >= 0;
    const int status = hasInput && !hasOthers ? EXIT_SUCCESS : EXIT_FAILURE;
    if (__asan_init != nullptr) {
      _exit(status);  // it would have nowhere to report to
    }
    std::exit(status);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  close(held);
}

}  // namespace
}  // namespace vantora
