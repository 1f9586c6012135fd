// SPDX-License-Identifier: MIT
//
// Which modules are visible and what their lines say: the first half of a presentation,
// without fonts and places. This is all that a tick without a change computes. Pure.
#pragma once

#include <string>
#include <vector>

#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "status/status_presentation.hpp"

namespace vantora::StatusModules {

/// Replaces `modules` by the visible ones, in the configuration's order. Their fonts and
/// places keep their defaults. Uses the vector's memory again.
void read(const AppConfiguration& configuration, const MetricSnapshot& snapshot, WallTime now,
          std::vector<StatusModule>& modules);

/// Replaces `signature` by the modules' texts with their identities. Under one
/// configuration, equal signatures mean equal pictures; sizes, fonts and gaps are not part
/// of it. Uses the string's memory again.
void sign(const std::vector<StatusModule>& modules, std::string& signature);

/// Both lines in one: "L1 L2", or the one that is not empty.
[[nodiscard]] std::string joinedLines(const StatusModule& module);

}  // namespace vantora::StatusModules
