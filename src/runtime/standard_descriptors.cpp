// SPDX-License-Identifier: MIT
#include "runtime/standard_descriptors.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>
#include <vector>

#include "runtime/unique_fd.hpp"

namespace vantora::StandardDescriptors {

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

bool canOpen(int count) {
  std::vector<UniqueFd> opened;
  while (static_cast<int>(opened.size()) < count) {
    opened.emplace_back(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
    if (!opened.back()) {
      return false;
    }
  }
  return true;
}

}  // namespace vantora::StandardDescriptors
