// SPDX-License-Identifier: MIT
#include "quota/claude/claude_quota_formatter.hpp"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>

#include "support/example_time.hpp"

namespace vantora {
namespace {

using test::exampleTime;
constexpr MetricSet bothLines{MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent};

WallTime later(double seconds) {
  return wallTimeFromUnix(1'790'000'000 + seconds);
}

ClaudeQuotaState readyState() {
  ClaudeQuotaState state;
  state.status = ClaudeQuotaStatus::ready;
  state.weeklyUsed = 37.5;
  state.weeklyResetAt = later(90'000);
  state.sessionUsed = 0.4;
  state.sessionResetAt = later(600);
  state.lastSuccess = later(-60);
  return state;
}

std::string weekly(const ClaudeQuotaState& state) {
  return ClaudeQuotaFormatter::text(MetricID::claudeWeeklyPercent, state, exampleTime);
}

std::string session(const ClaudeQuotaState& state) {
  return ClaudeQuotaFormatter::text(MetricID::claudeSessionPercent, state, exampleTime);
}

std::optional<double> nextChange(const ClaudeQuotaState& state, MetricSet demand = bothLines) {
  const auto delay = ClaudeQuotaFormatter::nextVisibleChange(state, demand, exampleTime);
  return delay ? std::optional(delay->count()) : std::nullopt;
}

TEST(ClaudeQuotaFormatter, WritesAnEmptyTextForOtherMetrics) {
  for (const MetricID metric : allMetrics) {
    EXPECT_EQ(ClaudeQuotaFormatter::text(metric, readyState(), exampleTime).empty(),
              !bothLines.contains(metric))
        << id(metric);
  }
}

TEST(ClaudeQuotaFormatter, WritesAWordOfItsOwnForMissingLimits) {
  ClaudeQuotaState state;
  state.status = ClaudeQuotaStatus::limitsUnavailable;
  EXPECT_EQ(session(state), "S/LIM");
  EXPECT_EQ(weekly(state), "--");
}

TEST(ClaudeQuotaFormatter, WritesTheShareAsTheSettingsSay) {
  ClaudeQuotaState state = readyState();
  EXPECT_EQ(weekly(state), "62%");
  state.settings.oneDecimal = true;
  EXPECT_EQ(weekly(state), "62.5%");
  state.settings.showUsed = true;
  EXPECT_EQ(weekly(state), "37.5%");
  EXPECT_EQ(session(state), "0.4%");
  state.settings.oneDecimal = false;
  EXPECT_EQ(weekly(state), "37%");
  EXPECT_EQ(session(state), "<1%");
  state.sessionUsed = 0;
  EXPECT_EQ(session(state), "0%");
}

TEST(ClaudeQuotaFormatter, MarksMoreThanEverythingUsedAndStaleValues) {
  ClaudeQuotaState state = readyState();
  state.weeklyUsed = 130;
  EXPECT_EQ(weekly(state), "0%!");
  state.settings.showUsed = true;
  EXPECT_EQ(weekly(state), "100%!");
  state.status = ClaudeQuotaStatus::stale;
  EXPECT_EQ(weekly(state), "100%*");
  state.settings.showUsed = false;
  EXPECT_EQ(weekly(state), "0%*");
}

TEST(ClaudeQuotaFormatter, WritesDashesForTheWindowWithoutAValue) {
  ClaudeQuotaState state = readyState();
  state.weeklyUsed.reset();
  EXPECT_EQ(weekly(state), "--");
  EXPECT_EQ(session(state), "99%");
  state = readyState();
  state.sessionUsed.reset();
  EXPECT_EQ(weekly(state), "62%");
  EXPECT_EQ(session(state), "--");
}

TEST(ClaudeQuotaFormatter, SaysSyncFromTheResetOnUntilANewReading) {
  ClaudeQuotaState state = readyState();
  state.sessionResetAt = later(0.001);
  EXPECT_EQ(session(state), "99%");
  state.sessionResetAt = exampleTime;
  EXPECT_EQ(session(state), "SYNC");
  state.sessionResetAt = later(-10);
  EXPECT_EQ(session(state), "SYNC");
  EXPECT_EQ(weekly(state), "62%");
  state.lastSuccess = later(-1800);
  EXPECT_EQ(session(state), "--");
}

TEST(ClaudeQuotaFormatter, ShowsAValueWithoutAResetTime) {
  ClaudeQuotaState state = readyState();
  state.weeklyResetAt.reset();
  EXPECT_EQ(weekly(state), "62%");
}

TEST(ClaudeQuotaFormatter, ChangesHalfASecondAfterTheSoonestMoment) {
  ClaudeQuotaState state = readyState();
  EXPECT_NEAR(nextChange(state).value(), 600.5, 1e-6);
  state.sessionResetAt = later(2000);
  EXPECT_NEAR(nextChange(state).value(), 1740.5, 1e-6);
  state.weeklyResetAt = later(10);
  EXPECT_NEAR(nextChange(state).value(), 10.5, 1e-6);
}

TEST(ClaudeQuotaFormatter, LooksOnlyAtTheResetsOfTheShownLines) {
  ClaudeQuotaState state = readyState();
  EXPECT_NEAR(nextChange(state, {MetricID::claudeWeeklyPercent}).value(), 1740.5, 1e-6);
  EXPECT_NEAR(nextChange(state, {MetricID::claudeSessionPercent}).value(), 600.5, 1e-6);
  EXPECT_NEAR(nextChange(state, {}).value(), 1740.5, 1e-6);

  std::swap(state.weeklyResetAt, state.sessionResetAt);
  EXPECT_NEAR(nextChange(state, {MetricID::claudeWeeklyPercent}).value(), 600.5, 1e-6);
  EXPECT_NEAR(nextChange(state, {MetricID::claudeSessionPercent}).value(), 1740.5, 1e-6);
}

TEST(ClaudeQuotaFormatter, DropsMomentsThatHavePassed) {
  ClaudeQuotaState state = readyState();
  state.sessionResetAt = exampleTime;
  EXPECT_NEAR(nextChange(state).value(), 1740.5, 1e-6);
  state.sessionResetAt = later(0.25);
  EXPECT_NEAR(nextChange(state).value(), 0.75, 1e-6);
}

TEST(ClaudeQuotaFormatter, ChangesByItselfOnlyWhileAValueIsShown) {
  ClaudeQuotaState state = readyState();
  state.status = ClaudeQuotaStatus::stale;
  EXPECT_TRUE(nextChange(state).has_value());
  state.status = ClaudeQuotaStatus::error;
  EXPECT_EQ(nextChange(state), std::nullopt);

  state = readyState();
  state.weeklyUsed.reset();
  EXPECT_TRUE(nextChange(state).has_value());
  state.sessionUsed.reset();
  EXPECT_EQ(nextChange(state), std::nullopt);

  state = readyState();
  state.lastSuccess.reset();
  EXPECT_EQ(nextChange(state), std::nullopt);
  state.lastSuccess = later(-1800);
  EXPECT_EQ(nextChange(state), std::nullopt);
}

}  // namespace
}  // namespace vantora
