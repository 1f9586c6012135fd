// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sampling/device_report.hpp"
#include "sampling/network_source.hpp"

namespace vantora {

/// Every interface of the table with what becomes of it: the one that `read` names feeds the two
/// rates, the others tell why NetworkCollector left them. `preferred` is the user's choice.
/// Without drivers, which the table does not know. Empty where the table cannot be read.
[[nodiscard]] std::vector<DeviceReport> linkReports(NetworkSource& source,
                                                    const std::optional<std::string>& preferred,
                                                    const std::optional<std::string>& read);

}  // namespace vantora
