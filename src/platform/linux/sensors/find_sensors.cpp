// SPDX-License-Identifier: MIT
//
// Which files tell the temperature of the CPU and of the battery.
#include <set>

#include "platform/linux/battery/power_supply.hpp"
#include "platform/linux/sensors/linux_temperature.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

constexpr double milliDegrees = 1000;
constexpr double tenthsOfADegree = 10;

UniqueFd openInput(const UniqueFd& directory, const Hwmon::Channel& channel) {
  return Sysfs::open(directory.get(), (channel.prefix + "_input").c_str());
}

std::string joined(const std::set<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text.append(text.empty() ? "" : ", ").append(name);
  }
  return text;
}

}  // namespace

FoundSensors findCpuSensors(ChipLookup& chips) {
  FoundSensors found;
  found.unitsPerDegree = milliDegrees;
  std::set<std::string> names;
  for (const Hwmon::CpuRank rank :
       {Hwmon::CpuRank::own, Hwmon::CpuRank::byLabel, Hwmon::CpuRank::wholeSoC}) {
    for (const Hwmon::Chip& chip : chips.chips()) {
      if (Hwmon::cpuRank(chip.name) != rank) {
        continue;
      }
      const UniqueFd directory = Sysfs::openDirectory(chip.directory);
      for (const auto& channel : Hwmon::cpuChannels(chip.name, Hwmon::channels(chip, "temp"))) {
        if (auto file = openInput(directory, channel)) {
          found.files.push_back(std::move(file));
          names.insert(chip.name);
        }
      }
    }
    if (!found.files.empty()) {
      const std::size_t count = found.files.size();
      found.source = (count == 1 ? "Linux hwmon · sensor de CPU ("
                                 : "Linux hwmon · maior valor de " + std::to_string(count) +
                                       " sensores de CPU (") +
                     joined(names) + ") · °C";
      return found;
    }
  }
  found.source = "Linux hwmon · nenhum sensor de CPU nesta máquina";
  return found;
}

FoundSensors findBatterySensors(const std::string& powerSupplyRoot, ChipLookup& chips) {
  FoundSensors found;
  bool hasBattery = false;
  const UniqueFd root = Sysfs::openDirectory(powerSupplyRoot);
  for (const std::string& name : Sysfs::namesIn(powerSupplyRoot)) {
    const UniqueFd directory = Sysfs::openDirectory(root.get(), name.c_str());
    if (!directory || !isMachineBattery(directory.get())) {
      continue;
    }
    hasBattery = true;
    if (auto file = Sysfs::open(directory.get(), "temp")) {
      found.files.push_back(std::move(file));
    }
  }
  if (!found.files.empty()) {
    const std::size_t count = found.files.size();
    found.unitsPerDegree = tenthsOfADegree;
    found.source = count == 1 ? "Linux power_supply · temperatura da bateria interna · °C"
                              : "Linux power_supply · média de " + std::to_string(count) +
                                    " baterias internas · °C";
    return found;
  }
  for (const Hwmon::Chip& chip : chips.chips()) {
    const UniqueFd directory = Sysfs::openDirectory(chip.directory);
    for (const Hwmon::Channel& channel : Hwmon::batteryChannels(chip)) {
      if (auto file = openInput(directory, channel)) {
        found.files.push_back(std::move(file));
        found.unitsPerDegree = milliDegrees;
        found.source = "Linux hwmon · sensor da bateria (" + chip.name + ") · °C";
        return found;
      }
    }
  }
  found.source = hasBattery ? "Linux power_supply · bateria interna sem sensor de temperatura"
                            : "Bateria interna indisponível";
  return found;
}

}  // namespace vantora
