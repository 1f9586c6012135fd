// SPDX-License-Identifier: MIT
//
// When a provider queries and publishes by itself, both edges of every instant: what both
// providers do alike.
#include "quota/quota_provider.hpp"

#include <gmock/gmock.h>

#include "quota/provider_fixture.hpp"

namespace vantora {
namespace {

using test::ProviderCaseNames;
using test::ProviderCases;
using testing::IsEmpty;

template <typename Case>
class QueryTimesTest : public test::QuotaProviderFixture<Case> {};
TYPED_TEST_SUITE(QueryTimesTest, ProviderCases, ProviderCaseNames);

TYPED_TEST(QueryTimesTest, QueriesAtTheInterval) {
  for (const int minutes : {1, 3, 5, 10}) {
    this->settings().intervalMinutes = minutes;
    this->configure();
    this->answerReading();
    this->expectQueryAfter(std::chrono::minutes{minutes});
    this->answerReading();
    this->expectQueryAfter(std::chrono::minutes{minutes});
    this->answerJson("{}");
    this->expectQueryAfter(std::chrono::minutes{minutes});
    this->provider_->shutdown();
  }
}

TYPED_TEST(QueryTimesTest, KeepsNothingButItsTimersBetweenQueries) {
  this->configure();
  this->answerFailure();
  // No value, so no display: the one timer is the query's.
  EXPECT_EQ(this->time_.pendingCount(), 1U);
  EXPECT_EQ(this->queue_->lastLeeway(), TypeParam::queryLeeway);
  this->time_.advance(Seconds{180});
  this->answerWithResetIn(Seconds{90'000});
  EXPECT_FALSE(this->isConversing());
  EXPECT_EQ(this->time_.pendingCount(), 2U);
  this->configure();
  EXPECT_EQ(this->queue_->lastLeeway(), TypeParam::displayLeeway);
  EXPECT_EQ(this->time_.pendingCount(), 2U);
}

TYPED_TEST(QueryTimesTest, CountsAChangedIntervalFromTheLastQuery) {
  this->settings().intervalMinutes = 10;
  this->becomeReady();
  this->time_.advance(Seconds{100});
  this->settings().intervalMinutes = 3;
  this->configure();
  EXPECT_EQ(this->published_.size(), 1U);
  this->expectQueryAfter(Seconds{80});
}

TYPED_TEST(QueryTimesTest, QueriesAfterASecondWhenAChangedIntervalHasPassedAlready) {
  this->settings().intervalMinutes = 5;
  this->becomeReady();
  this->time_.advance(Seconds{180});
  this->settings().intervalMinutes = 1;
  this->configure();
  this->expectQueryAfter(Seconds{1});
}

TYPED_TEST(QueryTimesTest, LeavesTheScheduleAloneWhenTheIntervalIsTheSame) {
  this->becomeReady();
  this->time_.advance(Seconds{100});
  this->settings().showUsed = true;
  this->configure();
  EXPECT_TRUE(this->takePublished().back().settings.showUsed);
  this->expectQueryAfter(Seconds{80});
}

TYPED_TEST(QueryTimesTest, LeavesARunningQueryAloneWhenTheIntervalChanges) {
  this->configure();
  this->settings().intervalMinutes = 1;
  this->time_.advance(Seconds{2});
  this->configure();
  EXPECT_EQ(this->time_.pendingCount(), 0U);
  this->answerReading();
  this->expectQueryAfter(Seconds{60});
}

TYPED_TEST(QueryTimesTest, DiffersInWhetherANewIntervalStartsQueries) {
  this->configure();
  this->answer(quota_result::Cancelled{});
  this->settings().intervalMinutes = 1;
  this->configure();
  EXPECT_EQ(this->time_.pendingCount(), TypeParam::newIntervalStartsQueries ? 1U : 0U);
}

TYPED_TEST(QueryTimesTest, WaitsLongerWithEveryFailure) {
  this->settings().intervalMinutes = 1;
  this->fraction_ = 0.5;
  this->configure();
  for (const double seconds : {180.0, 360.0, 720.0, 1800.0, 1800.0}) {
    this->answerFailure();
    this->expectQueryAfter(Seconds{seconds + 7.5});
  }
}

TYPED_TEST(QueryTimesTest, NeverRetriesSoonerThanAtTheInterval) {
  this->settings().intervalMinutes = 5;
  this->configure();
  for (const double seconds : {300.0, 360.0, 720.0}) {
    this->answerFailure();
    this->expectQueryAfter(Seconds{seconds});
  }
  this->settings().intervalMinutes = 10;
  this->provider_->shutdown();
  this->configure();
  this->fraction_ = 0.9375;
  for (const double seconds : {600.0, 600.0, 720.0, 1800.0}) {
    this->answerFailure();
    this->expectQueryAfter(Seconds{seconds + 14.0625});
  }
}

TYPED_TEST(QueryTimesTest, ForgetsItsFailuresAfterAnAnswer) {
  for (const std::string& json : {TypeParam::reading(40, std::nullopt), std::string("{}")}) {
    this->configure();
    this->answerFailure();
    this->expectQueryAfter(Seconds{180});
    this->answerFailure();
    this->expectQueryAfter(Seconds{360});
    this->answerJson(json);
    this->expectQueryAfter(Seconds{180});
    this->answerFailure();
    this->expectQueryAfter(Seconds{180});
    this->provider_->shutdown();
  }
}

TYPED_TEST(QueryTimesTest, CountsAnAnswerThatCannotBeDecodedAsAFailure) {
  this->configure();
  this->answerFailure();
  this->expectQueryAfter(Seconds{180});
  this->answerJson("[]");
  this->expectQueryAfter(Seconds{360});
  this->answerJson("[]");
  this->expectQueryAfter(Seconds{720});
}

TYPED_TEST(QueryTimesTest, ForgetsItsFailuresOnStopAndManualRefresh) {
  this->configure();
  this->answerFailure();
  this->expectQueryAfter(Seconds{180});
  this->answerFailure();
  this->time_.advance(Seconds{30});
  this->provider_->manualRefresh();
  this->answerFailure();
  this->expectQueryAfter(Seconds{180});
  this->answerFailure();
  this->configure(true);
  this->configure(false);
  this->answerFailure();
  this->expectQueryAfter(Seconds{180});
}

TYPED_TEST(QueryTimesTest, RefreshesManuallyThirtySecondsAfterTheLastQuery) {
  this->becomeReady();
  this->time_.advance(Seconds{30} - this->justBefore);
  this->provider_->manualRefresh();
  EXPECT_EQ(this->clientCount(), 1U);
  EXPECT_THAT(this->published_, IsEmpty());
  this->time_.advance(this->justBefore);
  this->provider_->manualRefresh();
  EXPECT_EQ(this->clientCount(), 2U);
  ASSERT_EQ(this->published_.size(), 1U);
  EXPECT_EQ(this->published_[0].status, TestFixture::Status::connecting);
  EXPECT_EQ(this->published_[0].message, TypeParam::queryMessage);
  EXPECT_EQ(TypeParam::used(this->published_[0]), 40);
  this->time_.advance(Seconds{60});
  this->provider_->manualRefresh();
  EXPECT_EQ(this->clientCount(), 2U) << "while a query runs";
  this->answerReading();
  this->time_.advance(Seconds{29});
  this->provider_->manualRefresh();
  EXPECT_EQ(this->clientCount(), 3U) << "counted from the start of the query";
  this->answerReading();
  this->time_.advance(Seconds{29});
  this->provider_->manualRefresh();
  EXPECT_EQ(this->clientCount(), 3U);
}

TYPED_TEST(QueryTimesTest, DoesNotRefreshManuallyWhileDisabled) {
  this->provider_->manualRefresh();
  EXPECT_EQ(this->clientCount(), 0U);
}

TYPED_TEST(QueryTimesTest, PublishesWhenTheValueTurnsThirtyMinutesOld) {
  this->settings().intervalMinutes = 1;
  this->showPercentOnly();
  this->becomeReady();
  this->failUntilTheValueIsNearlyOld();
  this->expectPublishedAfter(Seconds{480} + TypeParam::afterExpiry);
  EXPECT_EQ(this->state().status, TestFixture::Status::stale);
  EXPECT_EQ(TypeParam::used(this->state()), 40);
  EXPECT_FALSE(this->state().isPresentable(this->time_.now()));
  EXPECT_EQ(this->time_.pendingCount(), 1U);
}

TYPED_TEST(QueryTimesTest, QueriesOnceAfterAReset) {
  this->settings().intervalMinutes = 10;
  this->becomeReady(Seconds{90});
  const WallTime resetAt = *TypeParam::resetAt(this->state());
  this->time_.advance(Seconds{90} + TypeParam::afterReset - this->justBefore);
  EXPECT_EQ(this->clientCount(), 1U);
  this->takePublished();
  this->time_.advance(this->justBefore);
  EXPECT_EQ(this->clientCount(), 2U);
  EXPECT_EQ(this->published_.front().status, TypeParam::showsQueryAfterReset
                                                 ? TestFixture::Status::connecting
                                                 : TestFixture::Status::ready);
  EXPECT_EQ(this->published_.size(), TypeParam::showsQueryAfterReset ? 2U : 1U);

  // The service still reports the same reset: nothing more until the interval.
  this->answerWithResetAt(resetAt);
  this->expectQueryAfter(Seconds{600});
}

TYPED_TEST(QueryTimesTest, CountsAResetFromItsVeryInstantOn) {
  this->settings().intervalMinutes = 1;
  this->showPercentOnly();
  // The wake-up for the age of the value is at the reset itself.
  this->time_.advance(Seconds{1} - TypeParam::afterExpiry);
  this->configure();
  this->answerWithResetAt(this->time_.now() +
                          std::chrono::milliseconds{std::lround(
                              (quotaValueLifetime + TypeParam::afterExpiry).count() * 1000)});
  this->failUntilTheValueIsNearlyOld();
  this->expectQueryAfter(Seconds{480} + TypeParam::afterExpiry);
}

TYPED_TEST(QueryTimesTest, QueriesAgainAfterTheNextReset) {
  this->settings().intervalMinutes = 10;
  this->becomeReady(Seconds{90});
  this->time_.advance(Seconds{90} + TypeParam::afterReset);
  EXPECT_EQ(this->clientCount(), 2U);
  this->answerWithResetIn(Seconds{120});
  this->expectQueryAfter(secondsBetween(this->time_.now(), *TypeParam::resetAt(this->state())) +
                         TypeParam::afterReset);
}

TYPED_TEST(QueryTimesTest, DoesNotQueryForAResetWithinThirtySecondsOfAQuery) {
  this->settings().intervalMinutes = 10;
  this->becomeReady(Seconds{29});
  this->time_.advance(Seconds{29} + TypeParam::afterReset);
  EXPECT_EQ(this->clientCount(), 1U);
  this->expectQueryAfter(Seconds{571} - TypeParam::afterReset);
}

TYPED_TEST(QueryTimesTest, TriesAgainAtALaterWakeUpWhenTheResetCameTooSoon) {
  this->settings().intervalMinutes = 1;
  this->becomeReady(Seconds{20});
  this->failUntilTheValueIsNearlyOld();
  this->expectQueryAfter(Seconds{480} + TypeParam::afterExpiry);
}

TYPED_TEST(QueryTimesTest, TriesAgainAtALaterWakeUpWhenAQueryRanAtTheReset) {
  this->settings().intervalMinutes = 1;
  this->becomeReady(Seconds{95});
  const WallTime resetAt = *TypeParam::resetAt(this->state());
  this->expectQueryAfter(Seconds{60});
  this->time_.advance(Seconds{35} + TypeParam::afterReset);
  EXPECT_EQ(this->clientCount(), 2U);
  this->answerWithResetAt(resetAt);
  this->failUntilTheValueIsNearlyOld();
  this->expectQueryAfter(Seconds{480} + TypeParam::afterExpiry);
}

TYPED_TEST(QueryTimesTest, NeverQueriesTwiceForOneReset) {
  this->settings().intervalMinutes = 1;
  this->becomeReady(Seconds{50});
  const WallTime resetAt = *TypeParam::resetAt(this->state());
  this->expectQueryAfter(Seconds{50} + TypeParam::afterReset);
  this->answerWithResetAt(resetAt);
  this->failUntilTheValueIsNearlyOld();
  this->expectPublishedAfter(Seconds{480} + TypeParam::afterExpiry);
  EXPECT_FALSE(this->isConversing());
}

TYPED_TEST(QueryTimesTest, QueriesAgainForAResetThatIsReportedAgain) {
  this->settings().intervalMinutes = 1;
  this->becomeReady(Seconds{50});
  const WallTime resetAt = *TypeParam::resetAt(this->state());
  this->expectQueryAfter(Seconds{50} + TypeParam::afterReset);
  this->answerWithResetIn(Seconds{90'000});
  this->expectQueryAfter(Seconds{60});
  this->answerWithResetAt(resetAt);
  this->failUntilTheValueIsNearlyOld();
  this->expectQueryAfter(Seconds{480} + TypeParam::afterExpiry);
}

TYPED_TEST(QueryTimesTest, DoesNotQueryForAResetWhileAQueryRuns) {
  this->settings().intervalMinutes = 1;
  this->becomeReady(Seconds{90});
  this->expectQueryAfter(Seconds{60});
  this->time_.advance(Seconds{100});
  EXPECT_EQ(this->clientCount(), 2U);
}

TYPED_TEST(QueryTimesTest, CountsTimeByUptimeAndAgeByTheWallClock) {
  this->showPercentOnly();
  this->becomeReady();
  this->time_.moveWallClock(std::chrono::hours{1});
  EXPECT_FALSE(this->state().isPresentable(this->time_.now()));
  this->expectQueryAfter(Seconds{180});
}

}  // namespace
}  // namespace vantora
