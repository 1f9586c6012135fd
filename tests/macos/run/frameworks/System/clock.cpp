// SPDX-License-Identifier: MIT
//
// The clock of uptime. Played: it stands still during sleep, as Linux's CLOCK_MONOTONIC does.
#include "frameworks/System/clock.hpp"

#include <time.h>

#include "objc/fault.hpp"

namespace {

thread_local std::uint64_t toldLast = 0;

}  // namespace

namespace standin {

std::uint64_t uptime() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
         static_cast<std::uint64_t>(now.tv_nsec);
}

std::uint64_t uptimeToldLast() {
  return toldLast != 0 ? toldLast : uptime();
}

}  // namespace standin

uint64_t clock_gettime_nsec_np(clockid_t clock) {
  if (clock != CLOCK_UPTIME_RAW) {
    standin::fault("clock_gettime_nsec_np is called for another clock than that of uptime");
  }
  toldLast = standin::uptime();
  return toldLast;
}
