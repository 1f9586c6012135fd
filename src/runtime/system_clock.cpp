// SPDX-License-Identifier: MIT
#include "runtime/system_clock.hpp"

namespace vantora {

Seconds SystemClock::uptime() const {
  return std::chrono::steady_clock::now().time_since_epoch();
}

WallTime SystemClock::now() const {
  return std::chrono::system_clock::now();
}

}  // namespace vantora
