// SPDX-License-Identifier: MIT
#include "platform/linux/battery/power_supply.hpp"

#include <cerrno>

#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

class Attributes {
 public:
  explicit Attributes(int directory) : directory_(directory) {}

  [[nodiscard]] Sysfs::Number read(const char* name) const {
    return Sysfs::readNumber(directory_, name);
  }
  [[nodiscard]] PowerSupply::Reading number(const char* name) const { return read(name).ifRead(); }
  [[nodiscard]] PowerSupply::Reading firstOf(const char* name, const char* otherwise) const {
    const auto value = number(name);
    return value ? value : number(otherwise);
  }
  /// Empty when there is none; good until the next call.
  [[nodiscard]] std::string_view text(const char* name) {
    return Sysfs::readText(directory_, name, buffer_).text;
  }

 private:
  int directory_;
  Sysfs::Buffer buffer_{};
};

bool isPresent(const Attributes& attributes) {
  // No attribute counts as present, an empty one does not: Windows' first subsystem for Linux
  // writes it so on machines without a battery.
  const Sysfs::Number present = attributes.read("present");
  return present.error == 0 ? present.value != 0 : present.error != EINVAL;
}

void readBattery(Attributes& attributes, PowerSupply& supply) {
  supply.present = isPresent(attributes);
  if (!supply.present) {
    return;
  }
  supply.status = powerSupplyStatus(attributes.text("status"));
  supply.energyNow = attributes.number("energy_now");
  if (supply.energyNow) {
    supply.energyFull = attributes.number("energy_full");
  } else {
    supply.chargeNow = attributes.number("charge_now");
    supply.chargeFull = supply.chargeNow ? attributes.number("charge_full") : std::nullopt;
  }
  supply.capacity = attributes.number("capacity");
  supply.powerNow = attributes.firstOf("power_now", "power_avg");
  supply.currentNow = attributes.firstOf("current_now", "current_avg");
  supply.voltage = attributes.number("voltage_min_design");
  if (supply.voltage.value_or(0) <= 0) {
    supply.voltage = attributes.number("voltage_now");
  }
  if (supply.status == PowerSupply::Status::charging) {
    supply.timeToFull = attributes.firstOf("time_to_full_now", "time_to_full_avg");
    supply.chargeLimit = attributes.number("charge_control_end_threshold");
  } else {
    supply.timeToEmpty = attributes.firstOf("time_to_empty_now", "time_to_empty_avg");
  }
}

void readAdapter(const Attributes& attributes, PowerSupply& supply) {
  supply.online = attributes.number("online").value_or(0) > 0;
  if (!supply.online) {
    return;
  }
  supply.voltageMax = attributes.number("voltage_max");
  if (supply.voltageMax.value_or(0) <= 0) {
    // The embedded controllers of Chromebooks and Framework laptops show the voltage of the
    // negotiated contract as the design voltage (cros_usbpd-charger in the kernel).
    supply.voltageMax = attributes.number("voltage_max_design");
  }
  supply.currentMax = supply.voltageMax ? attributes.number("current_max") : std::nullopt;
  if (!supply.currentMax) {
    supply.inputPowerLimit = attributes.number("input_power_limit");
  }
}

}  // namespace

PowerSupply readPowerSupply(int directory) {
  Attributes attributes(directory);
  PowerSupply supply;
  supply.type = powerSupplyType(attributes.text("type"));
  if (supply.type == PowerSupply::Type::other) {
    return supply;
  }
  supply.belongsToADevice = attributes.text("scope") == "Device";
  if (supply.belongsToADevice) {
    return supply;
  }
  if (supply.type == PowerSupply::Type::battery) {
    readBattery(attributes, supply);
  } else {
    readAdapter(attributes, supply);
  }
  return supply;
}

bool isMachineBatteryPlace(int directory) {
  Attributes attributes(directory);
  return powerSupplyType(attributes.text("type")) == PowerSupply::Type::battery &&
         attributes.text("scope") != "Device";
}

bool isMachineBattery(int directory) {
  return isMachineBatteryPlace(directory) && isPresent(Attributes(directory));
}

PowerSupply::Type powerSupplyType(std::string_view text) {
  if (text == "Battery") {
    return PowerSupply::Type::battery;
  }
  if (text == "Mains") {
    return PowerSupply::Type::mains;
  }
  // Older kernels name the kind of port as well: "USB_PD", "USB_DCP".
  return text.starts_with("USB") || text == "Wireless" ? PowerSupply::Type::usb
                                                       : PowerSupply::Type::other;
}

PowerSupply::Status powerSupplyStatus(std::string_view text) {
  if (text == "Charging") {
    return PowerSupply::Status::charging;
  }
  if (text == "Discharging") {
    return PowerSupply::Status::discharging;
  }
  if (text == "Not charging") {
    return PowerSupply::Status::notCharging;
  }
  return text == "Full" ? PowerSupply::Status::full : PowerSupply::Status::unknown;
}

}  // namespace vantora
