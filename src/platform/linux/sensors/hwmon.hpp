// SPDX-License-Identifier: MIT
//
// The kernel's hardware monitoring chips: which there are, and which of their channels are
// the CPU's temperatures, the battery's, and the machine's fans.
//
// Attributes: Documentation/ABI/testing/sysfs-class-hwmon of the kernel. Temperatures are in
// thousandths of a degree Celsius, fans in revolutions per minute. The names of the chips are
// those of their drivers (Documentation/hwmon/) or of device-tree thermal zones.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantora::Hwmon {

struct Chip {
  std::string directory;  ///< Absolute.
  std::string name;       ///< Of the driver, not unique.
  std::string device;     ///< What it is plugged to: "../../../coretemp.0"; may be empty.
};

/// One input of a chip: its file name without suffix ("temp1", "fan2"), and its label or "".
struct Channel {
  std::string prefix;
  std::string label;
};

/// The chips below `root`, by name and then by device, so that the order does not follow the
/// numbers, which change from one start to the next. One that vanishes meanwhile is left out.
[[nodiscard]] std::vector<Chip> chips(const std::string& root);

/// The chip's inputs of a kind ("temp" or "fan") in the order of their numbers.
[[nodiscard]] std::vector<Channel> channels(const Chip& chip, std::string_view kind);

/// How well the sensors of a chip represent the CPU.
enum class CpuRank {
  none,      ///< Another chip.
  own,       ///< Sensors of the CPU and of nothing else.
  byLabel,   ///< Many sensors, of which labels name the CPU's.
  wholeSoC,  ///< One sensor for the whole chip the CPU is part of.
};
[[nodiscard]] CpuRank cpuRank(std::string_view chip);

/// Those channels of the chip that measure the CPU.
[[nodiscard]] std::vector<Channel> cpuChannels(std::string_view chip,
                                               std::vector<Channel> channels);

/// Those temperatures of the chip that measure the battery. Only Apple's
/// controllers and the Steam Deck's have any.
[[nodiscard]] std::vector<Channel> batteryChannels(const Chip& chip);

/// How soon a chip is asked for the machine's fans, least first; negative: never, its fans
/// are of a graphics card.
[[nodiscard]] int fanRank(std::string_view chip);

}  // namespace vantora::Hwmon
