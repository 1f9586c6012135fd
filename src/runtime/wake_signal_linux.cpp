// SPDX-License-Identifier: MIT
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include "runtime/wake_signal.hpp"

namespace vantora {

// eventfd(2)
WakeSignal::WakeSignal() : reader_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!reader_) {
    throw std::system_error(errno, std::generic_category());
  }
}

void WakeSignal::raise() const {
  const std::uint64_t one = 1;
  // Refused only where it has been raised 2^64 - 2 times.
  [[maybe_unused]] const auto written = write(reader_.get(), &one, sizeof one);
}

void WakeSignal::clear() const {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto size = read(reader_.get(), &count, sizeof count);
}

}  // namespace vantora
