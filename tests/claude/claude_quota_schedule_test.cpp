// SPDX-License-Identifier: MIT
//
// When the provider queries and publishes by itself: both edges of every instant.
#include <gmock/gmock.h>

#include "claude/claude_provider_fixture.hpp"
#include "claude/claude_quota_formatter.hpp"

namespace vantora {
namespace {

using testing::IsEmpty;
using Status = ClaudeQuotaStatus;

class ClaudeQuotaScheduleTest : public test::ClaudeQuotaProviderTest {
 protected:
  /// Nothing is published just before `delay` from now, one state is then.
  void expectPublishedAfter(Seconds delay) {
    takePublished();
    time_.advance(delay - justBefore);
    EXPECT_THAT(published_, IsEmpty()) << "too early";
    time_.advance(justBefore);
    EXPECT_EQ(takePublished().size(), 1U) << "not at the instant";
  }
  using test::ClaudeQuotaProviderTest::becomeReady;
  void becomeReady(Seconds weeklyResetIn, Seconds sessionResetIn) {
    configure();
    answerReading(weeklyResetIn, sessionResetIn);
    ASSERT_EQ(state().status, Status::ready);
    takePublished();
  }
  /// At an interval of a minute, from an answer on: the next query and its retries fail,
  /// the last of them 1,320 s after the answer. The values turn old 480 s later, and the
  /// next retry is farther still.
  void failUntilTheValuesAreNearlyOld() {
    for (const double seconds : {60.0, 180.0, 360.0, 720.0}) {
      expectQueryAfter(Seconds{seconds});
      answerFailure();
    }
  }
  [[nodiscard]] std::string session() const {
    return ClaudeQuotaFormatter::text(MetricID::claudeSessionPercent, state(), time_.now());
  }
};

TEST_F(ClaudeQuotaScheduleTest, QueriesAtTheInterval) {
  for (const int minutes : {1, 3, 5, 10}) {
    settings().intervalMinutes = minutes;
    configure();
    answerReading();
    expectQueryAfter(std::chrono::minutes{minutes});
    answerReading();
    expectQueryAfter(std::chrono::minutes{minutes});
    answerUsage("{}");
    expectQueryAfter(std::chrono::minutes{minutes});
    provider_->shutdown();
  }
}

TEST_F(ClaudeQuotaScheduleTest, KeepsNothingButItsTimersBetweenQueries) {
  configure();
  answerFailure();
  // No value, so no display: the latest timer is the query's.
  EXPECT_EQ(time_.pendingCount(), 1U);
  EXPECT_EQ(queue_->lastLeeway(), Seconds{2});
  time_.advance(Seconds{180});
  answerReading();
  EXPECT_FALSE(isAsking());
  EXPECT_EQ(time_.pendingCount(), 2U);
  configure();
  EXPECT_EQ(queue_->lastLeeway(), Seconds{1});
  EXPECT_EQ(time_.pendingCount(), 2U);
}

TEST_F(ClaudeQuotaScheduleTest, WaitsAtLeastTheIntervalWhereItIsTheLonger) {
  settings().intervalMinutes = 10;
  executable_.reset();
  configure();
  executable_ = "/opt/claude";
  expectQueryAfter(Seconds{600});
  answer(claude_result::NeedsAuthentication{});
  expectQueryAfter(Seconds{600});
  answer(claude_result::UnsupportedVersion{});
  expectQueryAfter(Seconds{1800});
}

TEST_F(ClaudeQuotaScheduleTest, CountsAChangedIntervalFromTheLastQuery) {
  settings().intervalMinutes = 10;
  becomeReady();
  time_.advance(Seconds{100});
  settings().intervalMinutes = 3;
  configure();
  EXPECT_EQ(published_.size(), 1U);
  expectQueryAfter(Seconds{80});
}

TEST_F(ClaudeQuotaScheduleTest, QueriesAfterASecondWhenAChangedIntervalHasPassedAlready) {
  settings().intervalMinutes = 5;
  becomeReady();
  time_.advance(Seconds{180});
  settings().intervalMinutes = 1;
  configure();
  expectQueryAfter(Seconds{1});
}

TEST_F(ClaudeQuotaScheduleTest, LeavesTheScheduleAloneWhenTheIntervalIsTheSame) {
  becomeReady();
  time_.advance(Seconds{100});
  settings().showUsed = true;
  configure();
  EXPECT_TRUE(takePublished().back().settings.showUsed);
  expectQueryAfter(Seconds{80});
}

TEST_F(ClaudeQuotaScheduleTest, LeavesARunningQueryAloneWhenTheIntervalChanges) {
  configure();
  settings().intervalMinutes = 1;
  time_.advance(Seconds{2});
  configure();
  EXPECT_EQ(time_.pendingCount(), 0U);
  answerReading();
  expectQueryAfter(Seconds{60});
}

TEST_F(ClaudeQuotaScheduleTest, SchedulesNothingForAChangedIntervalWhereNoQueryWaits) {
  configure();
  answer(claude_result::Cancelled{});
  settings().intervalMinutes = 1;
  configure();
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(ClaudeQuotaScheduleTest, WaitsLongerWithEveryFailure) {
  fraction_ = 0.9375;
  configure();
  for (const double seconds : {180.0, 360.0, 720.0, 1800.0, 1800.0}) {
    answerFailure();
    expectQueryAfter(Seconds{seconds + 14.0625});
  }
  answerReading();
  expectQueryAfter(Seconds{180});
  answerFailure();
  expectQueryAfter(Seconds{194.0625});
}

TEST_F(ClaudeQuotaScheduleTest, NeverRetriesSoonerThanAtTheInterval) {
  settings().intervalMinutes = 10;
  configure();
  for (const double seconds : {600.0, 600.0, 720.0, 1800.0}) {
    answerFailure();
    expectQueryAfter(Seconds{seconds});
  }
}

TEST_F(ClaudeQuotaScheduleTest, CountsAnAnswerThatCannotBeDecodedAsAFailure) {
  configure();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answerUsage("[]");
  expectQueryAfter(Seconds{360});
}

TEST_F(ClaudeQuotaScheduleTest, ForgetsItsFailuresAfterAnAnswerWithoutWindows) {
  configure();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answerUsage("{}");
  expectQueryAfter(Seconds{180});
  answerFailure();
  expectQueryAfter(Seconds{180});
}

TEST_F(ClaudeQuotaScheduleTest, KeepsCountingFailuresThroughALostLogin) {
  configure();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answer(claude_result::NeedsAuthentication{});
  expectQueryAfter(Seconds{600});
  answerFailure();
  expectQueryAfter(Seconds{360});
  answer(claude_result::UnsupportedVersion{});
  expectQueryAfter(Seconds{1800});
  answerFailure();
  expectQueryAfter(Seconds{720});
}

TEST_F(ClaudeQuotaScheduleTest, ForgetsItsFailuresOnStopAndManualRefresh) {
  configure();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answerFailure();
  time_.advance(Seconds{30});
  provider_->manualRefresh();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answerFailure();
  configure(true);
  configure(false);
  answerFailure();
  expectQueryAfter(Seconds{180});
}

TEST_F(ClaudeQuotaScheduleTest, RefreshesByHandThirtySecondsAfterTheLastQuery) {
  becomeReady();
  time_.advance(Seconds{30} - justBefore);
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 1U);
  EXPECT_THAT(published_, IsEmpty());
  time_.advance(justBefore);
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 2U);
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::connecting);
  EXPECT_EQ(published_[0].message, "Consultando os limites pelo Claude Code.");
  EXPECT_EQ(published_[0].weeklyUsed, 40);
  time_.advance(Seconds{60});
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 2U) << "while a query runs";
}

TEST_F(ClaudeQuotaScheduleTest, DoesNotRefreshByHandWhileDisabled) {
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 0U);
}

TEST_F(ClaudeQuotaScheduleTest, PublishesWhenTheValuesTurnThirtyMinutesOld) {
  becomeReady();
  for (const double seconds : {180.0, 180.0, 360.0, 720.0}) {
    expectQueryAfter(Seconds{seconds});
    answerFailure();
  }
  // 1,440 s old; the next retry is half an hour away.
  expectPublishedAfter(Seconds{360.5});
  EXPECT_EQ(state().status, Status::stale);
  EXPECT_EQ(state().weeklyUsed, 40);
  EXPECT_FALSE(state().isPresentable(time_.now()));
  EXPECT_EQ(session(), "--");
  EXPECT_EQ(time_.pendingCount(), 1U);
}

TEST_F(ClaudeQuotaScheduleTest, QueriesOnceAfterAReset) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{400'000}, Seconds{90});
  const WallTime resetAt = *state().sessionResetAt;
  time_.advance(Seconds{90.5} - justBefore);
  EXPECT_EQ(clientCount(), 1U);
  EXPECT_THAT(published_, IsEmpty());
  time_.advance(justBefore);
  EXPECT_EQ(clientCount(), 2U);
  // Not forced: the values stay, and the passed window says SYNC.
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::ready);
  EXPECT_EQ(session(), "SYNC");

  // The service still reports the same windows: nothing more until the interval.
  answerReading(Seconds{400'000 - 90.5}, secondsBetween(time_.now(), resetAt));
  EXPECT_EQ(state().sessionResetAt, resetAt);
  expectQueryAfter(Seconds{600});
}

TEST_F(ClaudeQuotaScheduleTest, CountsAResetFromItsVeryInstantOn) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{400'000}, quotaValueLifetime + Seconds{0.5});
  failUntilTheValuesAreNearlyOld();
  // The wake-up behind the thirty minutes is at the reset itself.
  expectQueryAfter(Seconds{480.5});
}

TEST_F(ClaudeQuotaScheduleTest, QueriesAgainAfterTheNextReset) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{400'000}, Seconds{90});
  time_.advance(Seconds{90.5});
  answerReading(Seconds{400'000}, Seconds{120});
  expectQueryAfter(Seconds{120.5});
}

TEST_F(ClaudeQuotaScheduleTest, QueriesOnceForEachWindow) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{200}, Seconds{90});
  expectQueryAfter(Seconds{90.5});
  answerFailure();
  // The weekly window, which is the later one, is a reset of its own.
  expectQueryAfter(Seconds{110});
  answerFailure();
  EXPECT_EQ(state().status, Status::stale);
  // Neither again: the next one is the retry.
  expectQueryAfter(Seconds{600});
}

TEST_F(ClaudeQuotaScheduleTest, KeepsTheDistanceBetweenTheResetsOfBothWindows) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{89}, Seconds{60});
  expectQueryAfter(Seconds{60.5});
  answerFailure();
  // The weekly window is seen to reset 29 s after that query: too soon.
  time_.advance(Seconds{30});
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(ClaudeQuotaScheduleTest, DoesNotQueryForAResetWithinThirtySecondsOfAQuery) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{400'000}, Seconds{29});
  time_.advance(Seconds{29.5});
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_EQ(session(), "SYNC");
  EXPECT_EQ(clientCount(), 1U);
  provider_->shutdown();

  becomeReady(Seconds{400'000}, Seconds{29.5});
  expectQueryAfter(Seconds{30});
}

TEST_F(ClaudeQuotaScheduleTest, TriesAgainAtALaterWakeUpWhenTheResetCameTooSoon) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{60}, Seconds{10});
  time_.advance(Seconds{10.5});
  EXPECT_EQ(clientCount(), 1U);
  expectQueryAfter(Seconds{50});
}

TEST_F(ClaudeQuotaScheduleTest, DoesNotQueryForAResetWhileAQueryRuns) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{400'000}, Seconds{90});
  expectQueryAfter(Seconds{60});
  time_.advance(Seconds{100});
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(ClaudeQuotaScheduleTest, TriesAgainAtALaterWakeUpWhenAQueryRanAtTheReset) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{400'000}, Seconds{95});
  expectQueryAfter(Seconds{60});
  time_.advance(Seconds{35.5});
  EXPECT_EQ(clientCount(), 2U);
  answerReading(Seconds{400'000 - 95.5}, Seconds{-0.5});
  failUntilTheValuesAreNearlyOld();
  expectQueryAfter(Seconds{480.5});
}

TEST_F(ClaudeQuotaScheduleTest, NeverQueriesTwiceForOneReset) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{400'000}, Seconds{50});
  const ClaudeQuotaState first = state();
  expectQueryAfter(Seconds{50.5});
  answerReading(Seconds{400'000 - 50.5}, Seconds{-0.5});
  EXPECT_EQ(state().weeklyResetAt, first.weeklyResetAt);
  EXPECT_EQ(state().sessionResetAt, first.sessionResetAt);
  failUntilTheValuesAreNearlyOld();
  expectPublishedAfter(Seconds{480.5});
  EXPECT_FALSE(isAsking());
}

TEST_F(ClaudeQuotaScheduleTest, QueriesAgainForAResetThatIsReportedAnew) {
  settings().intervalMinutes = 1;
  for (const bool isWeekly : {false, true}) {
    const auto answerBoth = [&](Seconds moving) {
      const Seconds still{400'000 - time_.uptime().count()};
      isWeekly ? answerReading(moving, still) : answerReading(still, moving);
    };
    configure();
    answerBoth(Seconds{50});
    expectQueryAfter(Seconds{50.5});
    answerBoth(Seconds{90'000});
    expectQueryAfter(Seconds{60});
    answerBoth(Seconds{-60.5});
    failUntilTheValuesAreNearlyOld();
    expectQueryAfter(Seconds{480.5});
    provider_->shutdown();
  }
}

TEST_F(ClaudeQuotaScheduleTest, WakesAgainAfterAFailureThatFollowsAForcedQuery) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{400'000}, Seconds{100});
  time_.advance(Seconds{60});
  provider_->manualRefresh();
  time_.advance(Seconds{40.5});
  EXPECT_EQ(time_.pendingCount(), 0U) << "nothing is shown that could change";
  answerFailure();
  EXPECT_EQ(time_.pendingCount(), 2U);
  EXPECT_EQ(session(), "SYNC");
}

TEST_F(ClaudeQuotaScheduleTest, WakesForTheShownWindowsOnly) {
  settings().intervalMinutes = 10;
  configuration_.modules[0].bottom = MetricID::none;
  becomeReady(Seconds{400'000}, Seconds{90});
  time_.advance(Seconds{599});
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(clientCount(), 1U);
}

TEST_F(ClaudeQuotaScheduleTest, FollowsALayoutThatShowsAnotherWindow) {
  settings().intervalMinutes = 10;
  configuration_.modules[0].bottom = MetricID::none;
  becomeReady(Seconds{400'000}, Seconds{90});
  time_.advance(Seconds{10});
  configuration_.modules[0].bottom = MetricID::claudeSessionPercent;
  configure();
  expectQueryAfter(Seconds{80.5});
}

}  // namespace
}  // namespace vantora
