// SPDX-License-Identifier: MIT
//
// The configuration of a user who has none yet, for the machine at hand: a desktop computer
// begins with readings and not with the dashes of a battery that it does not have.
#pragma once

#include <string>

#include "model/configuration.hpp"
#include "model/metric.hpp"

namespace vantora {

struct DriverFolders {
  std::string hwmon = "/sys/class/hwmon";
  std::string powerSupply = "/sys/class/power_supply";
};

/// The metrics that this machine cannot have: those of a battery where there is no place for
/// one, and those of a sensor chip where there is no chip. A reading that fails or that takes
/// its time does not count. Asks no hardware: only names and kinds are read, which the kernel
/// knows by itself.
[[nodiscard]] MetricSet absentMetrics(const DriverFolders& folders = {});

/// The default configuration, in which a module is inactive when `absent` has all of its
/// metrics.
[[nodiscard]] AppConfiguration firstConfiguration(MetricSet absent);

}  // namespace vantora
