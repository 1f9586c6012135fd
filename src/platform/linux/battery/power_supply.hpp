// SPDX-License-Identifier: MIT
//
// Power supplies as the kernel shows them, and the battery readings that follow from them.
//
// Attributes, units and meanings: Documentation/ABI/testing/sysfs-class-power and
// Documentation/power/power_supply_class.rst of the kernel. Micro-units throughout, times
// in seconds; a current is negative while discharging, but not every driver keeps to it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/time.hpp"
#include "sampling/battery_source.hpp"

namespace vantora {

/// One supply as it was read. An attribute that is missing or cannot be read is absent;
/// numbers are as the driver wrote them, believable or not.
struct PowerSupply {
  /// A wireless charger counts as USB; an uninterruptible power supply is none of these.
  enum class Type : std::uint8_t { other, battery, mains, usb };
  enum class Status : std::uint8_t { unknown, charging, discharging, notCharging, full };
  using Reading = std::optional<std::int64_t>;

  Type type = Type::other;
  bool belongsToADevice = false;  ///< Scope "Device": of a mouse or keyboard, not of the machine.

  // Of a battery.
  bool present = true;
  Status status = Status::unknown;
  Reading energyNow, energyFull;  ///< µWh
  Reading chargeNow, chargeFull;  ///< µAh
  Reading capacity;               ///< percent
  Reading powerNow;               ///< µW
  Reading currentNow;             ///< µA
  Reading voltage;                ///< µV: by design, or else at the moment
  Reading timeToFull;             ///< seconds
  Reading timeToEmpty;            ///< seconds
  Reading chargeLimit;            ///< percent at which charging ends, where a limit is set

  // Of an adapter.
  bool online = false;
  Reading voltageMax;       ///< µV that the supply can deliver at most, or is designed for
  Reading currentMax;       ///< µA that the supply can deliver at most
  Reading inputPowerLimit;  ///< µW

  [[nodiscard]] bool isMachineBattery() const {
    return type == Type::battery && !belongsToADevice && present;
  }
  [[nodiscard]] bool isAdapter() const {
    return (type == Type::mains || type == Type::usb) && !belongsToADevice;
  }
};

/// Reads the supply in the open directory. Only what the kind of supply has is read.
[[nodiscard]] PowerSupply readPowerSupply(int directory);

/// Whether a battery of the machine itself belongs here, in its bay or not. What this reads
/// the kernel knows without asking the driver's hardware.
[[nodiscard]] bool isMachineBatteryPlace(int directory);
/// Whether it is a battery of the machine itself; reads no more than that takes.
[[nodiscard]] bool isMachineBattery(int directory);

[[nodiscard]] PowerSupply::Type powerSupplyType(std::string_view text);
[[nodiscard]] PowerSupply::Status powerSupplyStatus(std::string_view text);

/// The readings of the machine that has these supplies; `now` dates the valid samples.
/// Several batteries count as one.
[[nodiscard]] BatteryReadings batteryReadings(const std::vector<PowerSupply>& supplies,
                                              WallTime now);

}  // namespace vantora
