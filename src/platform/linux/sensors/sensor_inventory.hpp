// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "sampling/device_report.hpp"

namespace vantora {

/// Every temperature and every fan that the machine's chips and batteries show, with what becomes
/// of it. What is chosen is asked of the code that chooses for a reading, so that the two cannot
/// differ. Asks the drivers, as a reading does.
[[nodiscard, gnu::cold]] std::vector<DeviceReport> sensorInventory(
    const LinuxSensorSource::Roots& roots);

}  // namespace vantora
