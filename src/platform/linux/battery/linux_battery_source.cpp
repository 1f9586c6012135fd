// SPDX-License-Identifier: MIT
#include "platform/linux/battery/linux_battery_source.hpp"

#include "platform/linux/battery/power_supply.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {

BatteryReadings LinuxBatterySource::read() {
  std::vector<PowerSupply> supplies;
  const UniqueFd root = Sysfs::openDirectory(root_);
  for (const std::string& name : Sysfs::namesIn(root_)) {
    // One that vanished since the listing is skipped.
    if (const UniqueFd directory = Sysfs::openDirectory(root.get(), name.c_str())) {
      supplies.push_back(readPowerSupply(directory.get()));
    }
  }
  return batteryReadings(supplies, clock_.now());
}

}  // namespace vantora
