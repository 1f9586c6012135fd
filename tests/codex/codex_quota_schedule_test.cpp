// SPDX-License-Identifier: MIT
//
// When the provider queries and publishes by itself: both edges of every instant.
#include <gmock/gmock.h>

#include "codex/codex_provider_fixture.hpp"
#include "codex/codex_quota_formatter.hpp"

namespace vantora {
namespace {

using testing::IsEmpty;
using Status = CodexQuotaStatus;

class CodexQuotaScheduleTest : public test::CodexQuotaProviderTest {
 protected:
  /// Nothing is published just before `delay` from now, one state is then.
  void expectPublishedAfter(Seconds delay) {
    takePublished();
    time_.advance(delay - justBefore);
    EXPECT_THAT(published_, IsEmpty()) << "too early";
    time_.advance(justBefore);
    EXPECT_EQ(takePublished().size(), 1U) << "not at the instant";
  }
  /// At an interval of a minute, from an answer on: the next query and its retries fail,
  /// the last of them 1,320 s after the answer. The value turns old 480 s later, and the
  /// next retry is farther still.
  void failUntilTheValueIsNearlyOld() {
    for (const double seconds : {60.0, 180.0, 360.0, 720.0}) {
      expectQueryAfter(Seconds{seconds});
      answerFailure();
    }
  }
  void answerWithResetAt(WallTime resetAt) {
    answerQuota(40, secondsBetween(time_.now(), resetAt));
    ASSERT_EQ(state().resetAt, resetAt);
  }
  void showPercentOnly() { configuration_.modules[0].bottom = MetricID::none; }
};

TEST_F(CodexQuotaScheduleTest, QueriesAtTheInterval) {
  for (const int minutes : {1, 3, 5, 10}) {
    settings().intervalMinutes = minutes;
    configure();
    answerQuota(40);
    expectQueryAfter(std::chrono::minutes{minutes});
    answerQuota(41);
    expectQueryAfter(std::chrono::minutes{minutes});
    provider_->shutdown();
  }
}

TEST_F(CodexQuotaScheduleTest, QueriesAtTheIntervalWithoutAWeeklyValueToo) {
  configure();
  answer(codex_result::Quota{"{}"});
  EXPECT_EQ(state().status, Status::weeklyUnavailable);
  expectQueryAfter(Seconds{180});
  answer(codex_result::Quota{R"({"rateLimits":{
    "primary":{"usedPercent":1,"windowDurationMins":10080},
    "secondary":{"usedPercent":1,"windowDurationMins":10080}}})"});
  EXPECT_EQ(state().status, Status::selectionRequired);
  expectQueryAfter(Seconds{180});
}

TEST_F(CodexQuotaScheduleTest, KeepsNothingButItsTimersBetweenQueries) {
  becomeReady(Seconds{90'000});
  EXPECT_FALSE(isConversing());
  EXPECT_EQ(time_.pendingCount(), 2U);
  showPercentOnly();
  configure();
  EXPECT_EQ(time_.pendingCount(), 2U);
  EXPECT_EQ(queue_->lastLeeway(), Seconds{0});
}

TEST_F(CodexQuotaScheduleTest, GivesItsQueriesNoLeeway) {
  configure();
  answerFailure();
  // No value, so no display: the one timer is the query's.
  EXPECT_EQ(time_.pendingCount(), 1U);
  EXPECT_EQ(queue_->lastLeeway(), Seconds{0});
}

TEST_F(CodexQuotaScheduleTest, CountsAChangedIntervalFromTheLastQuery) {
  settings().intervalMinutes = 10;
  becomeReady();
  time_.advance(Seconds{100});
  settings().intervalMinutes = 3;
  configure();
  EXPECT_EQ(published_.size(), 1U);
  expectQueryAfter(Seconds{80});
}

TEST_F(CodexQuotaScheduleTest, QueriesAfterASecondWhenAChangedIntervalHasPassedAlready) {
  settings().intervalMinutes = 5;
  becomeReady();
  time_.advance(Seconds{180});
  settings().intervalMinutes = 1;
  configure();
  expectQueryAfter(Seconds{1});
}

TEST_F(CodexQuotaScheduleTest, LeavesTheScheduleAloneWhenTheIntervalIsTheSame) {
  becomeReady();
  time_.advance(Seconds{100});
  settings().showUsed = true;
  configure();
  EXPECT_EQ(takePublished().back().settings.showUsed, true);
  expectQueryAfter(Seconds{80});
}

TEST_F(CodexQuotaScheduleTest, LeavesARunningQueryAloneWhenTheIntervalChanges) {
  configure();
  settings().intervalMinutes = 1;
  time_.advance(Seconds{2});
  configure();
  EXPECT_EQ(time_.pendingCount(), 0U);
  answerQuota(40);
  expectQueryAfter(Seconds{60});
}

TEST_F(CodexQuotaScheduleTest, QueriesALoggedOutCLIAgainWhenTheIntervalChanges) {
  becomeLoggedOut();
  time_.advance(Seconds{10});
  settings().intervalMinutes = 1;
  configure();
  expectQueryAfter(Seconds{50});
}

TEST_F(CodexQuotaScheduleTest, WaitsLongerWithEveryFailure) {
  settings().intervalMinutes = 1;
  fraction_ = 0.5;
  configure();
  for (const double seconds : {180.0, 360.0, 720.0, 1800.0, 1800.0}) {
    answerFailure();
    expectQueryAfter(Seconds{seconds + 7.5});
  }
}

TEST_F(CodexQuotaScheduleTest, NeverRetriesSoonerThanAtTheInterval) {
  settings().intervalMinutes = 5;
  configure();
  for (const double seconds : {300.0, 360.0, 720.0}) {
    answerFailure();
    expectQueryAfter(Seconds{seconds});
  }
  settings().intervalMinutes = 10;
  provider_->shutdown();
  configure();
  fraction_ = 0.9375;
  for (const double seconds : {600.0, 600.0, 720.0, 1800.0}) {
    answerFailure();
    expectQueryAfter(Seconds{seconds + 14.0625});
  }
}

TEST_F(CodexQuotaScheduleTest, ForgetsItsFailuresAfterASuccess) {
  configure();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answerFailure();
  expectQueryAfter(Seconds{360});
  answer(codex_result::Quota{"{}"});
  expectQueryAfter(Seconds{180});
  answerFailure();
  expectQueryAfter(Seconds{180});
}

TEST_F(CodexQuotaScheduleTest, CountsAnAnswerThatCannotBeDecodedAsAFailure) {
  configure();
  answer(codex_result::Quota{"[]"});
  expectQueryAfter(Seconds{180});
  answer(codex_result::Quota{"[]"});
  expectQueryAfter(Seconds{360});
}

TEST_F(CodexQuotaScheduleTest, ForgetsItsFailuresOnStopAndManualRefresh) {
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

TEST_F(CodexQuotaScheduleTest, RefreshesByHandThirtySecondsAfterTheLastQuery) {
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
  EXPECT_EQ(published_[0].message, "Consultando a cota semanal pelo App Server oficial.");
  EXPECT_EQ(published_[0].usedPercent, 40);
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 2U);
  answerQuota(41);
  time_.advance(Seconds{29});
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(CodexQuotaScheduleTest, DoesNotRefreshByHandWhileAQueryRuns) {
  configure();
  time_.advance(Seconds{60});
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 1U);
}

TEST_F(CodexQuotaScheduleTest, DoesNotRefreshByHandWhileDisabled) {
  provider_->manualRefresh();
  EXPECT_EQ(clientCount(), 0U);
}

TEST_F(CodexQuotaScheduleTest, CountsALoginAsNoQuery) {
  becomeLoggedOut();
  time_.advance(Seconds{30});
  provider_->connectInBrowser();
  answer(codex_result::NeedsAuthentication{});
  takePublished();
  provider_->manualRefresh();
  EXPECT_TRUE(isConversing());
}

TEST_F(CodexQuotaScheduleTest, TakesTheScheduledQueryOffDuringALogin) {
  becomeLoggedOut();
  settings().intervalMinutes = 1;
  configure();
  provider_->connectInBrowser();
  EXPECT_EQ(clientCount(), 2U);
  expectNoQueryForADay();
}

TEST_F(CodexQuotaScheduleTest, PublishesWhenTheCountdownMovesOn) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{3600 + 90});
  EXPECT_EQ(CodexQuotaFormatter::text(MetricID::codexWeeklyReset, state(), time_.now()), "1h1m");
  expectPublishedAfter(Seconds{30.1});
  EXPECT_EQ(CodexQuotaFormatter::text(MetricID::codexWeeklyReset, state(), time_.now()), "1h0m");
  expectPublishedAfter(Seconds{60});
  expectPublishedAfter(Seconds{60});
}

TEST_F(CodexQuotaScheduleTest, PublishesNothingForACountdownThatIsNotShown) {
  settings().intervalMinutes = 10;
  showPercentOnly();
  becomeReady(Seconds{3690});
  time_.advance(Seconds{599});
  EXPECT_THAT(published_, IsEmpty());
}

TEST_F(CodexQuotaScheduleTest, PublishesNothingForADateThatIsShown) {
  settings().intervalMinutes = 10;
  settings().showResetDate = true;
  becomeReady(Seconds{3690});
  time_.advance(Seconds{300});
  EXPECT_THAT(published_, IsEmpty());
  settings().showResetDate = false;
  configure();
  expectPublishedAfter(Seconds{30.1});
}

TEST_F(CodexQuotaScheduleTest, CountsDownAgainAfterAFailureThatFollowsAForcedQuery) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{3690});
  time_.advance(Seconds{40});
  provider_->manualRefresh();
  // The countdown moves on while the query runs, and is not shown then.
  time_.advance(Seconds{51});
  EXPECT_EQ(state().status, Status::connecting);
  answerFailure();
  EXPECT_EQ(state().status, Status::stale);
  expectPublishedAfter(Seconds{59.1});
}

TEST_F(CodexQuotaScheduleTest, PublishesWhenTheValueTurnsThirtyMinutesOld) {
  showPercentOnly();
  becomeReady();
  const WallTime lastSuccess = *state().lastSuccess;
  time_.advance(Seconds{180});
  answerFailure();
  time_.advance(Seconds{180});
  answerFailure();
  time_.advance(Seconds{360});
  answerFailure();
  time_.advance(Seconds{720});
  answerFailure();
  // 1,440 s old; the next retry is half an hour away.
  EXPECT_EQ(secondsBetween(lastSuccess, time_.now()), Seconds{1440});
  EXPECT_EQ(state().status, Status::stale);
  takePublished();
  time_.advance(Seconds{360} - justBefore);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_TRUE(state().isPresentable(time_.now()));
  time_.advance(justBefore);
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_EQ(state().status, Status::stale);
  EXPECT_EQ(state().usedPercent, 40);
  EXPECT_FALSE(state().isPresentable(time_.now()));
  EXPECT_EQ(time_.pendingCount(), 1U);
}

TEST_F(CodexQuotaScheduleTest, PublishesAtThirtyMinutesEvenWithoutAValue) {
  settings().intervalMinutes = 10;
  becomeReady();
  time_.advance(Seconds{600});
  answer(codex_result::Quota{"{}"});
  time_.advance(Seconds{600});
  answer(codex_result::Quota{"{}"});
  takePublished();
  // The query at the same instant was scheduled last and runs second.
  time_.advance(Seconds{600} - justBefore);
  EXPECT_THAT(published_, IsEmpty());
  time_.advance(justBefore);
  EXPECT_EQ(published_.size(), 1U);
}

TEST_F(CodexQuotaScheduleTest, ReadsTheQuotaOnceAfterAReset) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{90});
  const WallTime resetAt = *state().resetAt;
  // The countdown wakes at 30.1 s and then just behind the reset.
  time_.advance(Seconds{90.1} - justBefore);
  EXPECT_EQ(clientCount(), 1U);
  takePublished();
  time_.advance(justBefore);
  EXPECT_EQ(clientCount(), 2U);
  ASSERT_EQ(published_.size(), 2U);
  EXPECT_EQ(published_[0].status, Status::connecting);
  EXPECT_EQ(published_[0].message, "Consultando a cota semanal pelo App Server oficial.");

  // The service still reports the same reset: nothing more until the interval.
  answerQuota(40, secondsBetween(time_.now(), resetAt));
  EXPECT_EQ(state().resetAt, resetAt);
  expectQueryAfter(Seconds{600});
}

TEST_F(CodexQuotaScheduleTest, CountsAResetFromItsVeryInstantOn) {
  settings().intervalMinutes = 1;
  showPercentOnly();
  becomeReady(quotaValueLifetime);
  failUntilTheValueIsNearlyOld();
  // The wake-up at thirty minutes is at the reset itself.
  expectQueryAfter(Seconds{480});
}

TEST_F(CodexQuotaScheduleTest, ReadsTheQuotaAgainAfterTheNextReset) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{90});
  time_.advance(Seconds{90.1});
  EXPECT_EQ(clientCount(), 2U);
  answerQuota(0, Seconds{120});
  time_.advance(Seconds{119});
  EXPECT_EQ(clientCount(), 2U);
  time_.advance(Seconds{1.1});
  EXPECT_EQ(clientCount(), 3U);
}

TEST_F(CodexQuotaScheduleTest, DoesNotReadTheQuotaAfterAResetWithinThirtySecondsOfAQuery) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{20});
  time_.advance(Seconds{20.1});
  EXPECT_EQ(clientCount(), 1U);
  EXPECT_EQ(CodexQuotaFormatter::text(MetricID::codexWeeklyReset, state(), time_.now()), "SYNC");
  expectQueryAfter(Seconds{579.9});
}

TEST_F(CodexQuotaScheduleTest, TriesAgainAtALaterWakeUpWhenTheResetCameTooSoon) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{20});
  failUntilTheValueIsNearlyOld();
  takePublished();
  expectQueryAfter(Seconds{480});
  EXPECT_EQ(published_.front().status, Status::connecting);
}

TEST_F(CodexQuotaScheduleTest, TriesAgainAtALaterWakeUpWhenAQueryRanAtTheReset) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{95});
  const WallTime resetAt = *state().resetAt;
  expectQueryAfter(Seconds{60});
  time_.advance(Seconds{35.1});
  EXPECT_EQ(clientCount(), 2U);
  answerWithResetAt(resetAt);
  expectQueryAfter(Seconds{60});
  answerWithResetAt(resetAt);
  failUntilTheValueIsNearlyOld();
  expectQueryAfter(Seconds{480});
}

TEST_F(CodexQuotaScheduleTest, NeverReadsTheQuotaTwiceForOneReset) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{50});
  const WallTime resetAt = *state().resetAt;
  expectQueryAfter(Seconds{50.1});
  answerWithResetAt(resetAt);
  failUntilTheValueIsNearlyOld();
  expectPublishedAfter(Seconds{480});
  EXPECT_FALSE(isConversing());
}

TEST_F(CodexQuotaScheduleTest, ReadsTheQuotaAgainForAResetThatIsReportedAnew) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{50});
  const WallTime resetAt = *state().resetAt;
  expectQueryAfter(Seconds{50.1});
  answerQuota(0, Seconds{90'000});
  expectQueryAfter(Seconds{60});
  answerWithResetAt(resetAt);
  failUntilTheValueIsNearlyOld();
  expectQueryAfter(Seconds{480});
}

TEST_F(CodexQuotaScheduleTest, DoesNotReadTheQuotaAfterAResetWhileAQueryRuns) {
  settings().intervalMinutes = 1;
  becomeReady(Seconds{90});
  time_.advance(Seconds{60});
  EXPECT_EQ(clientCount(), 2U);
  time_.advance(Seconds{35});
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(CodexQuotaScheduleTest, CountsTimeByUptimeAndAgeByTheWallClock) {
  showPercentOnly();
  becomeReady();
  time_.moveWallClock(std::chrono::hours{1});
  EXPECT_FALSE(state().isPresentable(time_.now()));
  expectQueryAfter(Seconds{180});
}

}  // namespace
}  // namespace vantora
