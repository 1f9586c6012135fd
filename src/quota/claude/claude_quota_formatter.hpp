// SPDX-License-Identifier: MIT
//
// The short texts of the Claude quotas in the status bar, and when they change by
// themselves. Stateless; any thread.
#pragma once

#include <optional>
#include <string>

#include "model/metric.hpp"
#include "model/quota_state.hpp"

namespace vantora::ClaudeQuotaFormatter {

/// The text of `claudeWeeklyPercent` or `claudeSessionPercent`; empty for other metrics.
[[nodiscard]] std::string text(MetricID metric, const ClaudeQuotaState& state, WallTime now);

/// How long until a text of the shown metrics (`demand`) changes: a window resets, or the
/// values grow too old. Nothing while no value is shown.
[[nodiscard]] std::optional<Seconds> nextVisibleChange(const ClaudeQuotaState& state,
                                                       MetricSet demand, WallTime now);

}  // namespace vantora::ClaudeQuotaFormatter
