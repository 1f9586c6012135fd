// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "runtime/wake_signal.hpp"

namespace vantora {

// pipe(2); without pipe2(), a program started between the two calls inherits the descriptors,
// which is why children close what they inherit.
WakeSignal::WakeSignal() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
  reader_ = UniqueFd(ends[0]);
  writer_ = UniqueFd(ends[1]);
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
}

void WakeSignal::raise() const {
  const char one = 1;
  // Refused only where the pipe is full, and so readable.
  [[maybe_unused]] const auto written = write(writer_.get(), &one, sizeof one);
}

void WakeSignal::clear() const {
  std::array<char, 64> bytes{};
  while (read(reader_.get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) {
  }
}

}  // namespace vantora
