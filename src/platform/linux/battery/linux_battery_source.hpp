// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "runtime/clock.hpp"
#include "sampling/battery_source.hpp"

namespace vantora {

/// Battery and adapter from the kernel's power supplies. Lists them anew with every read:
/// batteries and docks come and go. Keeps nothing open. Used on the sampling queue only.
class LinuxBatterySource final : public BatterySource {
 public:
  /// `clock` must outlive the source.
  explicit LinuxBatterySource(const Clock& clock, std::string root = "/sys/class/power_supply")
      : clock_(clock), root_(std::move(root)) {}

  [[nodiscard]] BatteryReadings read() override;

 private:
  const Clock& clock_;
  std::string root_;
};

}  // namespace vantora
