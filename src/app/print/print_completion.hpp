// SPDX-License-Identifier: MIT
#pragma once

#include "model/configuration.hpp"
#include "model/sample.hpp"

namespace vantora::PrintCompletion {

/// Whether a single print has everything it waits for: the second sampling round (rates
/// need two; the first where the layout starts no sampling timer), and no shown quota
/// that is still being asked for.
[[nodiscard]] bool isComplete(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                              int samplingRounds);

}  // namespace vantora::PrintCompletion
