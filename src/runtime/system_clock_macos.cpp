// SPDX-License-Identifier: MIT
#include <time.h>

#include "runtime/system_clock.hpp"

namespace vantora {

Seconds SystemClock::uptime() const {
  // mach_absolute_time in nanoseconds (clock_gettime_nsec_np(3)). Not steady_clock, which
  // here is CLOCK_MONOTONIC_RAW and counts on while the machine sleeps.
  return std::chrono::nanoseconds(clock_gettime_nsec_np(CLOCK_UPTIME_RAW));
}

}  // namespace vantora
