// SPDX-License-Identifier: MIT
#include "platform/linux/driver_queue/stall_alarm.hpp"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>

namespace vantora {

StallAlarm::StallAlarm() : timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
  if (!timer_) {
    throw std::system_error(errno, std::generic_category());
  }
}

void StallAlarm::set(Seconds delay) const {
  const auto whole = std::chrono::floor<std::chrono::seconds>(delay);
  itimerspec setting{};
  setting.it_value.tv_sec = whole.count();
  setting.it_value.tv_nsec =
      std::chrono::duration_cast<std::chrono::nanoseconds>(delay - whole).count();
  ::timerfd_settime(timer_.get(), 0, &setting, nullptr);
}

void StallAlarm::cancel() const {
  const itimerspec never{};
  ::timerfd_settime(timer_.get(), 0, &never, nullptr);
}

void StallAlarm::clear() const {
  std::uint64_t expirations = 0;
  [[maybe_unused]] const ssize_t size = ::read(timer_.get(), &expirations, sizeof expirations);
}

}  // namespace vantora
