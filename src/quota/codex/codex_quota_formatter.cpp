// SPDX-License-Identifier: MIT
#include "quota/codex/codex_quota_formatter.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>

#include "model/quota_percent.hpp"
#include "quota/status_word.hpp"

namespace vantora::CodexQuotaFormatter {
namespace {

constexpr int minutesInHour = 60;
constexpr int minutesInDay = 1440;
constexpr double secondsInDay = 86'400;

std::string statusWord(CodexQuotaStatus status) {
  switch (status) {
    case CodexQuotaStatus::weeklyUnavailable:
      return "S/SEM";
    case CodexQuotaStatus::selectionRequired:
      return "COTA";
    case CodexQuotaStatus::permissionDenied:
      return "ACESSO";
    default:
      return sharedStatusWord(status);
  }
}

// strftime's numeric fields follow no locale.
std::string dateText(WallTime instant) {
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::time_point_cast<WallTime::duration>(
          std::chrono::floor<std::chrono::seconds>(instant)));
  std::tm local{};
  std::array<char, 16> buffer{};
  if (localtime_r(&seconds, &local) == nullptr) {
    return "--";
  }
  return {buffer.data(), std::strftime(buffer.data(), buffer.size(), "%d/%m %H:%M", &local)};
}

std::string countdownText(Seconds rest) {
  if (rest <= Seconds{0}) {
    return "SYNC";
  }
  const auto minutes = static_cast<long>(rest.count() / 60);
  if (minutes < 1) {
    return "<1m";
  }
  if (minutes < minutesInHour) {
    return std::to_string(minutes) + "m";
  }
  if (minutes < minutesInDay) {
    return std::to_string(minutes / minutesInHour) + "h" + std::to_string(minutes % minutesInHour) +
           "m";
  }
  return std::to_string(minutes / minutesInDay) + "d" +
         std::to_string(minutes % minutesInDay / minutesInHour) + "h";
}

std::string resetText(const CodexQuotaState& state, WallTime now) {
  if (!state.isPresentable(now)) {
    return statusWord(state.status);
  }
  if (!state.resetAt) {
    return "--";
  }
  return state.settings.showResetDate ? dateText(*state.resetAt)
                                      : countdownText(secondsBetween(now, *state.resetAt));
}

}  // namespace

std::optional<std::string> text(MetricID metric, const CodexQuotaState& state, WallTime now) {
  if (metric == MetricID::codexWeeklyReset) {
    return resetText(state, now);
  }
  if (metric != MetricID::codexWeeklyPercent) {
    return std::nullopt;
  }
  if (!state.isPresentable(now)) {
    return "--";
  }
  return quotaPercentText(*state.usedPercent, {.showUsed = state.settings.showUsed,
                                               .oneDecimal = state.settings.oneDecimal,
                                               .isStale = state.status == CodexQuotaStatus::stale});
}

std::optional<Seconds> nextVisibleChange(const CodexQuotaState& state, WallTime now) {
  if (!state.isPresentable(now) || state.settings.showResetDate || !state.resetAt) {
    return std::nullopt;
  }
  const double rest = secondsBetween(now, *state.resetAt).count();
  if (rest <= 0) {
    return std::nullopt;
  }
  const double step = rest >= secondsInDay ? 3600 : 60;
  // A tenth of a second more lands just behind the boundary at which the text changes.
  return Seconds{std::max(1.0, std::fmod(rest, step) + 0.1)};
}

}  // namespace vantora::CodexQuotaFormatter
