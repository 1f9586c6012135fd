// SPDX-License-Identifier: MIT
#include "runtime/standard_streams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace vantora::StandardStreams {

bool isOpen(int descriptor) {
  return fcntl(descriptor, F_GETFD) != -1;
}

void openMissing() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (!isOpen(descriptor)) {
      // open(2) gives the lowest free number: this one, the ones below it being taken.
      (void)::open("/dev/null", O_RDWR);
    }
  }
}

}  // namespace vantora::StandardStreams
