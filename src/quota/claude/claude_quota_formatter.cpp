// SPDX-License-Identifier: MIT
#include "quota/claude/claude_quota_formatter.hpp"

#include <algorithm>

#include "model/quota_percent.hpp"
#include "quota/status_word.hpp"

namespace vantora::ClaudeQuotaFormatter {
namespace {

std::string statusWord(ClaudeQuotaStatus status) {
  return status == ClaudeQuotaStatus::limitsUnavailable ? "S/LIM" : sharedStatusWord(status);
}

}  // namespace

std::string text(MetricID metric, const ClaudeQuotaState& state, WallTime now) {
  const bool isWeekly = metric == MetricID::claudeWeeklyPercent;
  if (!isWeekly && metric != MetricID::claudeSessionPercent) {
    return {};
  }
  if (!state.isPresentable(now)) {
    return isWeekly ? "--" : statusWord(state.status);
  }
  const std::optional<double>& used = isWeekly ? state.weeklyUsed : state.sessionUsed;
  const std::optional<WallTime>& resetAt = isWeekly ? state.weeklyResetAt : state.sessionResetAt;
  if (!used) {
    return "--";
  }
  if (resetAt && *resetAt <= now) {
    return "SYNC";
  }
  return quotaPercentText(*used, {.showUsed = state.settings.showUsed,
                                  .oneDecimal = state.settings.oneDecimal,
                                  .isStale = state.status == ClaudeQuotaStatus::stale});
}

std::optional<Seconds> nextVisibleChange(const ClaudeQuotaState& state, MetricSet demand,
                                         WallTime now) {
  if (!state.isPresentable(now)) {
    return std::nullopt;
  }
  std::optional<Seconds> soonest;
  const auto consider = [&soonest](Seconds delay) {
    if (delay > Seconds{0} && (!soonest || delay < *soonest)) {
      soonest = delay;
    }
  };
  consider(quotaValueLifetime - secondsBetween(*state.lastSuccess, now));
  if (demand.contains(MetricID::claudeWeeklyPercent) && state.weeklyResetAt) {
    consider(secondsBetween(now, *state.weeklyResetAt));
  }
  if (demand.contains(MetricID::claudeSessionPercent) && state.sessionResetAt) {
    consider(secondsBetween(now, *state.sessionResetAt));
  }
  if (soonest) {
    // Half a second more lands just behind the moment in question.
    *soonest += Seconds{0.5};
  }
  return soonest;
}

}  // namespace vantora::ClaudeQuotaFormatter
