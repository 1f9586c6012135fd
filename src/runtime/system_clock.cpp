// SPDX-License-Identifier: MIT
#include "runtime/system_clock.hpp"

namespace vantora {

WallTime SystemClock::now() const {
  return std::chrono::system_clock::now();
}

}  // namespace vantora
