// SPDX-License-Identifier: MIT
//
// The short texts of the Codex quota in the status bar, and when they change by
// themselves. Stateless; any thread.
#pragma once

#include <optional>
#include <string>

#include "model/metric.hpp"
#include "model/quota_state.hpp"

namespace vantora::CodexQuotaFormatter {

/// The text of `codexWeeklyPercent` or `codexWeeklyReset`; nothing for other metrics.
/// Dates are written in the process's local time zone.
[[nodiscard]] std::optional<std::string> text(MetricID metric, const CodexQuotaState& state,
                                              WallTime now);

/// How long until the countdown shows another text, at least one second; nothing while
/// no countdown is shown.
[[nodiscard]] std::optional<Seconds> nextVisibleChange(const CodexQuotaState& state, WallTime now);

}  // namespace vantora::CodexQuotaFormatter
