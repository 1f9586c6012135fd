// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/hwmon.hpp"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <tuple>

#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora::Hwmon {
namespace {

constexpr std::string_view inputSuffix = "_input";

std::string textOf(int directory, const char* name) {
  Sysfs::Buffer buffer;  // NOLINT: the read fills it
  return std::string(Sysfs::readText(directory, name, buffer).text);
}

std::string linkTarget(int directory, const char* name) {
  std::array<char, PATH_MAX> target;  // NOLINT: the call fills it
  const ssize_t size = ::readlinkat(directory, name, target.data(), target.size());
  return size > 0 ? std::string(target.data(), static_cast<std::size_t>(size)) : std::string();
}

// The number of "temp12_input"; nothing for any other name.
std::optional<int> inputNumber(std::string_view name, std::string_view kind) {
  if (!name.starts_with(kind) || !name.ends_with(inputSuffix)) {
    return std::nullopt;
  }
  name.remove_prefix(kind.size());
  if (name.size() <= inputSuffix.size()) {
    return std::nullopt;
  }
  name.remove_suffix(inputSuffix.size());
  int number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  const bool isNumber = error == std::errc() && end == name.data() + name.size();
  return isNumber && number >= 0 ? std::optional(number) : std::nullopt;
}

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& character : result) {
    if (character >= 'A' && character <= 'Z') {
      character = static_cast<char>(character - 'A' + 'a');
    }
  }
  return result;
}

template <std::size_t N>
bool isOneOf(std::string_view text, const std::array<std::string_view, N>& list) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

// Intel; AMD; out-of-tree for AMD; AMD before 2008; VIA; Loongson.
constexpr std::array<std::string_view, 7> cpuDrivers{
    "coretemp", "k10temp", "zenpower", "k8temp", "via_cputemp", "cpu_hwmon", "cputemp"};
// Apple silicon; Arm firmware; the ACPI tables of ASUS boards of about 2010.
constexpr std::array<std::string_view, 4> labelledDrivers{"macsmc_hwmon", "scpi_sensors",
                                                          "scmi_sensors", "atk0110"};
// Thermal zones of many systems on a chip; early Raspberry Pis; Ampere's servers.
constexpr std::array<std::string_view, 4> wholeSoCDrivers{"soc_thermal", "imx_thermal_zone",
                                                          "bcm2835_thermal", "apm_xgene"};
constexpr std::array<std::string_view, 3> batteryDrivers{"macsmc_hwmon", "applesmc",
                                                         "steamdeck_hwmon"};
constexpr std::array<std::string_view, 5> graphicsDrivers{"amdgpu", "radeon", "nouveau", "i915",
                                                          "xe"};
// The controllers that laptops and small machines are built around, so that a second view of
// the same fans (ACPI's, a management interface's) does not count them twice.
constexpr std::array<std::string_view, 13> controllers{
    "macsmc_hwmon", "applesmc",      "thinkpad",         "dell_smm", "cros_ec",      "asus",  "hp",
    "surface_fan",  "system76_acpi", "msi_wmi_platform", "acer",     "legion_hwmon", "pwmfan"};
// Super I/O and embedded controllers of desktop boards.
constexpr std::array<std::string_view, 8> boardChips{"nct", "it8",    "w83", "f71",
                                                     "sch", "asusec", "lm8", "smsc"};

}  // namespace

std::vector<Chip> chips(const std::string& root) {
  std::vector<Chip> found;
  for (const std::string& entry : Sysfs::namesIn(root)) {
    std::string path = root;
    path.append("/").append(entry);
    const UniqueFd directory = Sysfs::openDirectory(path);
    if (!directory) {
      continue;
    }
    std::string name = textOf(directory.get(), "name");
    if (!name.empty()) {
      found.push_back({std::move(path), std::move(name), linkTarget(directory.get(), "device")});
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const Chip& left, const Chip& right) {
    return std::tie(left.name, left.device) < std::tie(right.name, right.device);
  });
  return found;
}

std::vector<Channel> channels(const Chip& chip, std::string_view kind) {
  std::vector<int> numbers;
  for (const std::string& name : Sysfs::namesIn(chip.directory)) {
    if (const auto number = inputNumber(name, kind)) {
      numbers.push_back(*number);
    }
  }
  std::sort(numbers.begin(), numbers.end());
  const UniqueFd directory = Sysfs::openDirectory(chip.directory);
  std::vector<Channel> found;
  found.reserve(numbers.size());
  for (const int number : numbers) {
    std::string prefix = std::string(kind).append(std::to_string(number));
    std::string labelName = prefix;
    labelName.append("_label");
    std::string label = textOf(directory.get(), labelName.c_str());
    found.push_back({std::move(prefix), std::move(label)});
  }
  return found;
}

CpuRank cpuRank(std::string_view chip) {
  if (isOneOf(chip, cpuDrivers)) {
    return CpuRank::own;
  }
  if (isOneOf(chip, labelledDrivers)) {
    return CpuRank::byLabel;
  }
  const std::string name = lower(chip);
  // Thermal zones: "cpu_thermal", "cpu0_0_top_thermal", "cpu_therm", "bigcore0_thermal".
  if (name.find("therm") != std::string::npos) {
    for (const std::string_view start : {"cpu", "bigcore", "littlecore"}) {
      if (name.starts_with(start)) {
        return CpuRank::own;
      }
    }
  }
  return isOneOf(name, wholeSoCDrivers) ? CpuRank::wholeSoC : CpuRank::none;
}

std::vector<Channel> cpuChannels(std::string_view chip, std::vector<Channel> channels) {
  const auto keep = [&](auto isCpu) {
    channels.erase(std::remove_if(channels.begin(), channels.end(),
                                  [&](const Channel& channel) { return !isCpu(channel); }),
                   channels.end());
  };
  if (cpuRank(chip) == CpuRank::byLabel) {
    keep([](const Channel& channel) {
      const std::string label = lower(channel.label);
      // Arm's Juno names its clusters "big" and "LITTLE".
      return label.find("cpu") != std::string::npos || label == "big" || label == "little";
    });
    return channels;
  }
  // Tctl is a control value, on some models well above the temperature; where the chip has
  // the temperature, it calls it Tdie (Documentation/hwmon/k10temp.rst).
  const bool hasDieTemperature =
      std::any_of(channels.begin(), channels.end(),
                  [](const Channel& channel) { return channel.label == "Tdie"; });
  if (hasDieTemperature) {
    keep([](const Channel& channel) { return channel.label != "Tctl"; });
  }
  return channels;
}

std::vector<Channel> batteryChannels(const Chip& chip) {
  std::vector<Channel> found;
  if (!isOneOf(chip.name, batteryDrivers)) {
    return found;
  }
  for (Channel& channel : channels(chip, "temp")) {
    // Words on Apple silicon and the Steam Deck, keys of Apple's controller beside Intel.
    if (channel.label.starts_with("Battery") || channel.label == "TB0T") {
      found.push_back(std::move(channel));
    }
  }
  return found;
}

int fanRank(std::string_view chip) {
  if (isOneOf(chip, graphicsDrivers)) {
    return -1;
  }
  int rank = 0;
  for (const std::string_view controller : controllers) {
    if (chip == controller) {
      return rank;
    }
    ++rank;
  }
  for (const std::string_view start : boardChips) {
    if (chip.starts_with(start)) {
      return rank;
    }
  }
  return chip == "acpi_fan" ? rank + 2 : rank + 1;
}

}  // namespace vantora::Hwmon
