// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "settings/conversation/window_state.hpp"

namespace vantora {

/// A reading for each metric that an active module shows, in the catalogue's order: the text
/// of the bar and, where it is no fresh value, the reason. Pure.
[[nodiscard]] std::vector<MetricReading> metricReadings(const AppConfiguration& configuration,
                                                        const MetricSnapshot& snapshot,
                                                        WallTime now);

}  // namespace vantora
