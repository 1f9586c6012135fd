// SPDX-License-Identifier: MIT
#include "quota/codex/codex_quota_formatter.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string_view>
#include <utility>

#include "support/example_time.hpp"
#include "support/time_zone.hpp"

namespace vantora {
namespace {

using test::exampleTime;

WallTime later(double seconds) {
  return wallTimeFromUnix(1'790'000'000 + seconds);
}

CodexQuotaState readyState(double usedPercent = 43) {
  CodexQuotaState state;
  state.status = CodexQuotaStatus::ready;
  state.usedPercent = usedPercent;
  state.resetAt = later(3660);
  state.lastSuccess = later(-60);
  return state;
}

std::string percent(const CodexQuotaState& state) {
  return CodexQuotaFormatter::text(MetricID::codexWeeklyPercent, state, exampleTime)
      .value_or("nothing");
}

std::string reset(const CodexQuotaState& state) {
  return CodexQuotaFormatter::text(MetricID::codexWeeklyReset, state, exampleTime)
      .value_or("nothing");
}

std::string resetIn(double seconds) {
  CodexQuotaState state = readyState();
  state.resetAt = later(seconds);
  return reset(state);
}

std::optional<double> nextChange(const CodexQuotaState& state) {
  const auto delay = CodexQuotaFormatter::nextVisibleChange(state, exampleTime);
  return delay ? std::optional(delay->count()) : std::nullopt;
}

std::optional<double> nextChangeWithResetIn(double seconds) {
  CodexQuotaState state = readyState();
  state.resetAt = later(seconds);
  return nextChange(state);
}

TEST(CodexQuotaFormatter, WritesNothingForOtherMetrics) {
  for (const MetricID metric : allMetrics) {
    const bool isCodex =
        metric == MetricID::codexWeeklyPercent || metric == MetricID::codexWeeklyReset;
    EXPECT_EQ(CodexQuotaFormatter::text(metric, readyState(), exampleTime).has_value(), isCodex)
        << id(metric);
  }
}

TEST(CodexQuotaFormatter, WritesWordsOfItsOwnForWhatOnlyCodexReports) {
  const std::map<CodexQuotaStatus, std::string> words{
      {CodexQuotaStatus::weeklyUnavailable, "S/SEM"},
      {CodexQuotaStatus::selectionRequired, "COTA"},
      {CodexQuotaStatus::permissionDenied, "ACESSO"}};
  for (const auto& [status, word] : words) {
    CodexQuotaState state;
    state.status = status;
    state.resetAt = later(3660);
    EXPECT_EQ(reset(state), word);
    EXPECT_EQ(percent(state), "--") << word;
  }
}

TEST(CodexQuotaFormatter, WritesTheStatusWordWhenTheValueBelongsToAnotherStatus) {
  CodexQuotaState state = readyState();
  state.status = CodexQuotaStatus::connecting;
  EXPECT_EQ(percent(state), "--");
  EXPECT_EQ(reset(state), "...");
}

TEST(CodexQuotaFormatter, WritesTheShareAsTheSettingsSay) {
  CodexQuotaState state = readyState(12.97);
  EXPECT_EQ(percent(state), "87%");
  state.settings.oneDecimal = true;
  EXPECT_EQ(percent(state), "87.0%");
  state.settings.showUsed = true;
  EXPECT_EQ(percent(state), "12.9%");
  state.settings.oneDecimal = false;
  EXPECT_EQ(percent(state), "12%");
  EXPECT_EQ(percent(readyState(99.6)), "<1%");
}

TEST(CodexQuotaFormatter, MarksMoreThanEverythingUsed) {
  CodexQuotaState state = readyState(130);
  EXPECT_EQ(percent(state), "0%!");
  state.settings.showUsed = true;
  EXPECT_EQ(percent(state), "100%!");
}

TEST(CodexQuotaFormatter, ShowsTheStarAndNeverTheExclamationMarkWhenStale) {
  CodexQuotaState state = readyState(130);
  state.status = CodexQuotaStatus::stale;
  EXPECT_EQ(percent(state), "0%*");
  state.usedPercent = 43;
  EXPECT_EQ(percent(state), "57%*");
}

TEST(CodexQuotaFormatter, CountsDownInTheTwoLargestUnits) {
  EXPECT_EQ(resetIn(0.5), "<1m");
  EXPECT_EQ(resetIn(59), "<1m");
  EXPECT_EQ(resetIn(60), "1m");
  EXPECT_EQ(resetIn(45 * 60 + 59), "45m");
  EXPECT_EQ(resetIn(3599), "59m");
  EXPECT_EQ(resetIn(3600), "1h0m");
  EXPECT_EQ(resetIn(3660), "1h1m");
  EXPECT_EQ(resetIn(5 * 3600 + 7 * 60), "5h7m");
  EXPECT_EQ(resetIn(86'399), "23h59m");
  EXPECT_EQ(resetIn(86'400), "1d0h");
  EXPECT_EQ(resetIn(90'000), "1d1h");
  EXPECT_EQ(resetIn(3 * 86'400 + 4 * 3600 + 3599), "3d4h");
}

TEST(CodexQuotaFormatter, WritesSyncOnceTheResetHasPassed) {
  EXPECT_EQ(resetIn(0), "SYNC");
  EXPECT_EQ(resetIn(-1), "SYNC");
}

TEST(CodexQuotaFormatter, WritesDashesForAnUnknownReset) {
  CodexQuotaState state = readyState();
  state.resetAt.reset();
  EXPECT_EQ(reset(state), "--");
  state.settings.showResetDate = true;
  EXPECT_EQ(reset(state), "--");
}

TEST(CodexQuotaFormatter, WritesTheResetDateInTheLocalTimeZone) {
  CodexQuotaState state = readyState();
  state.settings.showResetDate = true;
  state.resetAt = wallTimeFromUnix(1'790'040'000.9);  // 2026-09-22T01:20:00.9Z
  {
    const test::PinnedTimeZone zone("<-03>3");
    EXPECT_EQ(reset(state), "21/09 22:20");
  }
  {
    const test::PinnedTimeZone zone("UTC0");
    EXPECT_EQ(reset(state), "22/09 01:20");
  }
}

TEST(CodexQuotaFormatter, WritesTheDateEvenAfterTheReset) {
  const test::PinnedTimeZone zone("UTC0");
  CodexQuotaState state = readyState();
  state.settings.showResetDate = true;
  state.resetAt = later(-1);
  EXPECT_EQ(reset(state), "21/09 14:13");
}

TEST(CodexQuotaFormatter, ChangesJustAfterTheNextWholeMinuteBelowADay) {
  EXPECT_NEAR(nextChangeWithResetIn(3690).value(), 30.1, 1e-6);
  EXPECT_NEAR(nextChangeWithResetIn(86'399).value(), 59.1, 1e-6);
  EXPECT_NEAR(nextChangeWithResetIn(20).value(), 20.1, 1e-6);
}

TEST(CodexQuotaFormatter, ChangesJustAfterTheNextWholeHourFromADayOn) {
  EXPECT_NEAR(nextChangeWithResetIn(90'000 + 1800).value(), 1800.1, 1e-6);
  EXPECT_NEAR(nextChangeWithResetIn(86'400 + 5).value(), 5.1, 1e-6);
}

TEST(CodexQuotaFormatter, NeverChangesSoonerThanInOneSecond) {
  EXPECT_EQ(nextChangeWithResetIn(86'400), 1);
  EXPECT_EQ(nextChangeWithResetIn(3600.5), 1);
  EXPECT_EQ(nextChangeWithResetIn(0.01), 1);
}

TEST(CodexQuotaFormatter, ChangesByItselfOnlyWhileACountdownIsShown) {
  EXPECT_TRUE(nextChange(readyState()).has_value());
  EXPECT_EQ(nextChangeWithResetIn(0), std::nullopt);
  EXPECT_EQ(nextChangeWithResetIn(-5), std::nullopt);

  CodexQuotaState state = readyState();
  const std::map<CodexQuotaStatus, bool> changes{{CodexQuotaStatus::stale, true},
                                                 {CodexQuotaStatus::error, false}};
  for (const auto& [status, isChanging] : changes) {
    state.status = status;
    EXPECT_EQ(nextChange(state).has_value(), isChanging);
  }

  state = readyState();
  state.usedPercent.reset();
  EXPECT_EQ(nextChange(state), std::nullopt);

  state = readyState();
  state.resetAt.reset();
  EXPECT_EQ(nextChange(state), std::nullopt);

  state = readyState();
  state.settings.showResetDate = true;
  EXPECT_EQ(nextChange(state), std::nullopt);

  state = readyState();
  state.lastSuccess.reset();
  EXPECT_EQ(nextChange(state), std::nullopt);
  state.lastSuccess = later(-1799.5);
  EXPECT_TRUE(nextChange(state).has_value());
  state.lastSuccess = later(-1800);
  EXPECT_EQ(nextChange(state), std::nullopt);
}

}  // namespace
}  // namespace vantora
