// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "sampling/device_report.hpp"

namespace vantora {

/// Every power supply below `root` with what becomes of it, by their names. Those of other
/// devices (a mouse, a game pad) have no name here: theirs tell a serial number or an address.
/// Asks the drivers, as a reading does.
[[nodiscard]] std::vector<DeviceReport> supplyInventory(
    const std::string& root = "/sys/class/power_supply");

}  // namespace vantora
