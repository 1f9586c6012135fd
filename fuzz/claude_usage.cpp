// SPDX-License-Identifier: MIT
//
// Whatever decodes yields a reading that keeps its promises; the same bytes are read as a
// date as well.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "quota/claude/claude_quota_formatter.hpp"
#include "quota/claude/claude_usage_parser.hpp"

namespace {

using namespace vantora;

void require(bool isKept) {
  if (!isKept) {
    std::abort();
  }
}

void checkDate(const std::optional<WallTime>& date) {
  if (date) {
    const double seconds = secondsBetween(wallTimeFromUnix(0), *date).count();
    require(seconds >= 0 && seconds < latestBelievableUnixTime);
  }
}

void checkWindow(const std::optional<double>& used, const std::optional<WallTime>& resetAt) {
  require(!used || (std::isfinite(*used) && *used >= 0));
  require(used || !resetAt);
  checkDate(resetAt);
}

void check(const ClaudeUsageReading& reading) {
  require(reading.weeklyUsed || reading.sessionUsed);
  checkWindow(reading.weeklyUsed, reading.weeklyResetAt);
  checkWindow(reading.sessionUsed, reading.sessionResetAt);
  ClaudeQuotaState state;
  state.status = ClaudeQuotaStatus::ready;
  state.weeklyUsed = reading.weeklyUsed;
  state.weeklyResetAt = reading.weeklyResetAt;
  state.sessionUsed = reading.sessionUsed;
  state.sessionResetAt = reading.sessionResetAt;
  const WallTime now = wallTimeFromUnix(1'790'000'000);
  state.lastSuccess = now;
  constexpr MetricSet lines{MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent};
  for (const MetricID metric : lines) {
    const std::string text = ClaudeQuotaFormatter::text(metric, state, now);
    require(!text.empty() && text.size() <= 8);
  }
  require(ClaudeQuotaFormatter::nextVisibleChange(state, lines, now).has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto answer = ClaudeUsageParser::parseUsageResponse(text)) {
    if (const auto* reading = std::get_if<ClaudeUsageReading>(&*answer)) {
      check(*reading);
    }
  }
  if (const auto windows = ClaudeUsageParser::parse(text); windows && windows->reading) {
    check(*windows->reading);
  }
  checkDate(ClaudeUsageParser::dateFromISO(text));
  return 0;
}
