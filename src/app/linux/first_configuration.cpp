// SPDX-License-Identifier: MIT
#include "app/linux/first_configuration.hpp"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "platform/linux/battery/power_supply.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

bool hasBatteryPlace(const std::string& powerSupply) {
  const UniqueFd root = Sysfs::openDirectory(powerSupply);
  const std::vector<std::string> names = Sysfs::namesIn(powerSupply);
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    const UniqueFd directory = Sysfs::openDirectory(root.get(), name.c_str());
    return directory && isMachineBatteryPlace(directory.get());
  });
}

void insertAll(MetricSet& set, std::initializer_list<MetricID> metrics) {
  for (const MetricID metric : metrics) {
    set.insert(metric);
  }
}

bool isAbsent(MetricID metric, MetricSet absent) {
  return metric == MetricID::none || absent.contains(metric);
}

}  // namespace

MetricSet absentMetrics(const DriverFolders& folders) {
  using enum MetricID;
  MetricSet absent;
  const bool hasBattery = hasBatteryPlace(folders.powerSupply);
  const bool hasChip = !Sysfs::namesIn(folders.hwmon).empty();
  if (!hasBattery) {
    insertAll(absent, {batteryPercent, batteryTime});
  }
  if (!hasChip) {
    insertAll(absent, {cpuTemperature, fan1Percent, fan2Percent, fan1RPM, fan2RPM});
  }
  // Either of the two may have a thermometer for it.
  if (!hasBattery && !hasChip) {
    absent.insert(batteryTemperature);
  }
  return absent;
}

AppConfiguration firstConfiguration(MetricSet absent) {
  AppConfiguration configuration;
  for (ModuleConfiguration& module : configuration.modules) {
    module.enabled = !isAbsent(module.top, absent) || !isAbsent(module.bottom, absent);
  }
  return configuration;
}

}  // namespace vantora
