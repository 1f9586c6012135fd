// SPDX-License-Identifier: MIT
#pragma once

#include "runtime/clock.hpp"

namespace vantora {

/// The machine's clocks. uptime() is CLOCK_MONOTONIC on Linux and mach_absolute_time on
/// macOS; neither counts the time that the machine sleeps.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] Seconds uptime() const override;
  [[nodiscard]] WallTime now() const override;
};

}  // namespace vantora
