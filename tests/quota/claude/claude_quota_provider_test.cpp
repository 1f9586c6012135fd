// SPDX-License-Identifier: MIT
//
// What the Claude provider does differently: two windows with resets of their own, and waits after
// a refusal. What both providers do is in tests/quota.
#include "quota/claude/claude_quota_provider.hpp"

#include <gmock/gmock.h>

#include "quota/claude/claude_quota_formatter.hpp"
#include "quota/provider_fixture.hpp"

namespace vantora {
namespace {

using testing::IsEmpty;
using Status = ClaudeQuotaStatus;

class ClaudeQuotaProviderTest : public test::QuotaProviderFixture<test::ClaudeCase> {
 protected:
  /// A reading whose windows reset so long from now.
  void answerReading(Seconds weeklyResetIn, Seconds sessionResetIn, double weekly = 40,
                     double session = 20) {
    answerJson(R"({"rate_limits":{"seven_day":)" + window(weekly, weeklyResetIn) +
               R"(,"five_hour":)" + window(session, sessionResetIn) + "}}");
  }
  void answerReading() { answerReading(Seconds{400'000}, Seconds{18'000}); }
  void becomeReady(Seconds weeklyResetIn = Seconds{400'000},
                   Seconds sessionResetIn = Seconds{18'000}) {
    configure();
    answerReading(weeklyResetIn, sessionResetIn);
    ASSERT_EQ(state().status, Status::ready);
    takePublished();
  }
  [[nodiscard]] std::string session() const {
    return ClaudeQuotaFormatter::text(MetricID::claudeSessionPercent, state(), time_.now());
  }

 private:
  // Resets may be fractions of a second here.
  [[nodiscard]] std::string window(double used, Seconds resetIn) const {
    const Seconds resetsAt = secondsBetween(WallTime(), time_.now()) + resetIn;
    return R"({"utilization":)" + std::to_string(used) + R"(,"resets_at":)" +
           std::to_string(resetsAt.count()) + "}";
  }
};

TEST_F(ClaudeQuotaProviderTest, ShowsBothValues) {
  configure();
  takePublished();
  answerReading(Seconds{400'000}, Seconds{18'000}, 37.5, 0.25);
  ASSERT_EQ(published_.size(), 1U);
  const ClaudeQuotaState& ready = published_[0];
  EXPECT_EQ(ready.status, Status::ready);
  EXPECT_EQ(ready.weeklyUsed, 37.5);
  EXPECT_EQ(ready.weeklyResetAt, time_.now() + std::chrono::seconds{400'000});
  EXPECT_EQ(ready.sessionUsed, 0.25);
  EXPECT_EQ(ready.sessionResetAt, time_.now() + std::chrono::seconds{18'000});
  EXPECT_EQ(ready.lastSuccess, time_.now());
  EXPECT_EQ(ready.message, "Limites do Claude (semanal e 5 horas) consultados com sucesso.");
  EXPECT_EQ(ready, state());
}

TEST_F(ClaudeQuotaProviderTest, DropsAValueThatTheNextReadingDoesNotHave) {
  becomeReady();
  time_.advance(Seconds{180});
  answerJson(R"({"rate_limits":{"five_hour":{"utilization":3}}})");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_FALSE(state().weeklyUsed);
  EXPECT_FALSE(state().weeklyResetAt);
  EXPECT_EQ(state().sessionUsed, 3);
  EXPECT_FALSE(state().sessionResetAt);
}

TEST_F(ClaudeQuotaProviderTest, CallsAFailureAfterALostLoginAnError) {
  becomeReady();
  time_.advance(Seconds{180});
  answer(quota_result::NeedsAuthentication{});
  time_.advance(Seconds{600});
  answerFailure();
  EXPECT_EQ(state().status, Status::error);
}

TEST_F(ClaudeQuotaProviderTest, WaitsAtLeastTheIntervalWhereItIsTheLonger) {
  settings().intervalMinutes = 10;
  executable_.reset();
  configure();
  executable_ = AssistantExecutable{"/opt/tool", "/opt/tool"};
  expectQueryAfter(Seconds{600});
  answer(quota_result::NeedsAuthentication{});
  expectQueryAfter(Seconds{600});
  answer(quota_result::UnsupportedVersion{});
  expectQueryAfter(Seconds{1800});
}

TEST_F(ClaudeQuotaProviderTest, KeepsCountingFailuresThroughALostLogin) {
  configure();
  answerFailure();
  expectQueryAfter(Seconds{180});
  answer(quota_result::NeedsAuthentication{});
  expectQueryAfter(Seconds{600});
  answerFailure();
  expectQueryAfter(Seconds{360});
  answer(quota_result::UnsupportedVersion{});
  expectQueryAfter(Seconds{1800});
  answerFailure();
  expectQueryAfter(Seconds{720});
}

TEST_F(ClaudeQuotaProviderTest, QueriesOnceForEachWindow) {
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

TEST_F(ClaudeQuotaProviderTest, KeepsTheMinimumIntervalBetweenTheResetsOfBothWindows) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{89}, Seconds{60});
  expectQueryAfter(Seconds{60.5});
  answerFailure();
  // The weekly window is seen to reset 29 s after that query: too soon.
  time_.advance(Seconds{30});
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(ClaudeQuotaProviderTest, TriesAgainAtALaterWakeUpWhenTheResetCameTooSoon) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{60}, Seconds{10});
  time_.advance(Seconds{10.5});
  EXPECT_EQ(clientCount(), 1U);
  expectQueryAfter(Seconds{50});
}

TEST_F(ClaudeQuotaProviderTest, QueriesAgainForAResetThatIsReportedAgain) {
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
    failUntilTheValueIsNearlyOld();
    expectQueryAfter(Seconds{480.5});
    provider_->shutdown();
  }
}

TEST_F(ClaudeQuotaProviderTest, WakesAgainAfterAFailureThatFollowsAForcedQuery) {
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

TEST_F(ClaudeQuotaProviderTest, WakesForTheShownWindowsOnly) {
  settings().intervalMinutes = 10;
  configuration_.modules[0].bottom = MetricID::none;
  becomeReady(Seconds{400'000}, Seconds{90});
  time_.advance(Seconds{599});
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(clientCount(), 1U);
}

TEST_F(ClaudeQuotaProviderTest, FollowsALayoutThatShowsAnotherWindow) {
  settings().intervalMinutes = 10;
  configuration_.modules[0].bottom = MetricID::none;
  becomeReady(Seconds{400'000}, Seconds{90});
  time_.advance(Seconds{10});
  configuration_.modules[0].bottom = MetricID::claudeSessionPercent;
  configure();
  expectQueryAfter(Seconds{80.5});
}

TEST_F(ClaudeQuotaProviderTest, DoesNotQueryForAResetWithinThirtySecondsOfAQuery) {
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

}  // namespace
}  // namespace vantora
