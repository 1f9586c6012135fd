// SPDX-License-Identifier: MIT
//
// When a provider runs, what each result makes of its state, and what the user's requests do: what
// both providers do alike. Its timers are tested in query_times_test.cpp.
#include "quota/quota_provider.hpp"

#include <gmock/gmock.h>

#include "quota/provider_fixture.hpp"

namespace vantora {
namespace {

using test::ProviderCaseNames;
using test::ProviderCases;
using testing::IsEmpty;

template <typename Case>
class QuotaProviderTest : public test::QuotaProviderFixture<Case> {};
TYPED_TEST_SUITE(QuotaProviderTest, ProviderCases, ProviderCaseNames);

TYPED_TEST(QuotaProviderTest, BeginsDisabledAndPublishesNothingUnasked) {
  EXPECT_EQ(this->state(), typename TestFixture::State{});
  EXPECT_EQ(this->state().message, "Integração desativada.");
  EXPECT_THAT(this->published_, IsEmpty());
  EXPECT_EQ(this->time_.pendingCount(), 0U);
}

TYPED_TEST(QuotaProviderTest, ConnectsAndQueriesWhenItIsWanted) {
  this->configure();
  ASSERT_EQ(this->published_.size(), 2U);
  EXPECT_EQ(this->published_[0].status, TestFixture::Status::connecting);
  EXPECT_EQ(this->published_[0].message, TypeParam::startMessage);
  EXPECT_TRUE(this->published_[0].settings.enabled);
  EXPECT_EQ(this->published_[1].status, TestFixture::Status::connecting);
  EXPECT_EQ(this->published_[1].message, TypeParam::queryMessage);
  EXPECT_EQ(this->client()->executable, this->executable_);
  EXPECT_EQ(this->client()->mode, CodexClientMode::read);
  EXPECT_EQ(this->client()->starts, 1);
  EXPECT_FALSE(this->client()->onLoginURL);
}

TYPED_TEST(QuotaProviderTest, IsWantedForEitherMetric) {
  this->configuration_.modules[0].bottom = MetricID::none;
  this->configure();
  EXPECT_EQ(this->clientCount(), 1U);
  this->provider_->shutdown();
  this->configuration_.modules[0].top = MetricID::none;
  this->configuration_.modules[0].bottom = TypeParam::bottom;
  this->configure();
  EXPECT_EQ(this->clientCount(), 2U);
}

TYPED_TEST(QuotaProviderTest, StaysDisabledUnlessEverythingIsThere) {
  const auto expectDisabled = [this](bool sleeping) {
    this->configure(sleeping);
    ASSERT_EQ(this->published_.size(), 1U);
    typename TestFixture::State expected;
    expected.settings =
        (this->configuration_.*TypeParam::settings).value_or(typename TestFixture::Settings{});
    EXPECT_EQ(this->published_[0], expected);
    EXPECT_EQ(this->clientCount(), 0U);
    EXPECT_EQ(this->time_.pendingCount(), 0U);
    this->published_.clear();
  };
  this->settings().showUsed = true;
  expectDisabled(true);
  this->settings().enabled = false;
  expectDisabled(false);
  this->settings().enabled = true;
  this->configuration_.paused = true;
  expectDisabled(false);
  this->configuration_.paused = false;
  this->configuration_.modules[0].enabled = false;
  expectDisabled(false);
  this->configuration_.modules.clear();
  expectDisabled(false);
  (this->configuration_.*TypeParam::settings).reset();
  expectDisabled(false);
}

TYPED_TEST(QuotaProviderTest, StopsWhenItsModuleIsTurnedOff) {
  this->becomeReady();
  this->configuration_.modules[0].enabled = false;
  this->configure();
  ASSERT_EQ(this->published_.size(), 1U);
  typename TestFixture::State disabled;
  disabled.settings = this->settings();
  EXPECT_EQ(this->published_[0], disabled);
  EXPECT_EQ(this->time_.pendingCount(), 0U);
}

TYPED_TEST(QuotaProviderTest, StopsForSleepAndStartsAgainAfterWaking) {
  this->becomeReady();
  this->configure(true);
  EXPECT_EQ(this->takePublished().back().status, TestFixture::Status::disabled);
  EXPECT_EQ(this->time_.pendingCount(), 0U);
  this->time_.advance(Seconds{5});
  this->configure(false);
  ASSERT_EQ(this->published_.size(), 2U);
  EXPECT_EQ(this->published_[0].message, TypeParam::startMessage);
  EXPECT_EQ(this->clientCount(), 2U);
}

TYPED_TEST(QuotaProviderTest, StopsForAPauseAndStartsAgainAtOnce) {
  this->becomeReady();
  this->configuration_.paused = true;
  this->configure();
  EXPECT_EQ(this->takePublished().back().status, TestFixture::Status::disabled);
  this->configuration_.paused = false;
  this->configure();
  EXPECT_EQ(this->published_.front().status, TestFixture::Status::connecting);
  EXPECT_EQ(this->clientCount(), 2U);
}

TYPED_TEST(QuotaProviderTest, CancelsTheConversationWhenItStops) {
  this->configure();
  const auto running = this->client();
  this->configure(true);
  EXPECT_EQ(running->cancels, 1);
  EXPECT_EQ(running.use_count(), 1);
  EXPECT_EQ(this->state().status, TestFixture::Status::disabled);
}

TYPED_TEST(QuotaProviderTest, DropsTheResultOfAConversationFromBeforeAStop) {
  this->configure();
  const auto old = this->client();
  this->provider_->shutdown();
  const typename TestFixture::State before = this->state();
  this->takePublished();
  old->completion(quota_result::NeedsAuthentication{});
  EXPECT_EQ(this->state(), before);
  this->configure();
  this->takePublished();
  old->completion(quota_result::NeedsAuthentication{});
  EXPECT_EQ(this->state().status, TestFixture::Status::connecting);
  EXPECT_THAT(this->published_, IsEmpty());
  EXPECT_TRUE(this->isConversing());
}

TYPED_TEST(QuotaProviderTest, SurvivesAResultAfterItsEnd) {
  this->configure();
  const auto running = this->client();
  this->provider_.reset();
  EXPECT_EQ(running->cancels, 1);
  running->completion(quota_result::NeedsAuthentication{});
  EXPECT_EQ(this->time_.pendingCount(), 0U);
}

TYPED_TEST(QuotaProviderTest, KeepsTheStateOnShutdownAndPublishesNothing) {
  this->becomeReady();
  const typename TestFixture::State before = this->state();
  this->provider_->shutdown();
  EXPECT_EQ(this->state(), before);
  EXPECT_THAT(this->published_, IsEmpty());
  EXPECT_EQ(this->time_.pendingCount(), 0U);
}

TYPED_TEST(QuotaProviderTest, ShowsAValue) {
  this->configure();
  this->takePublished();
  this->answerWithResetIn(Seconds{90'000});
  ASSERT_EQ(this->published_.size(), 1U);
  EXPECT_EQ(this->published_[0], this->state());
  EXPECT_EQ(this->state().status, TestFixture::Status::ready);
  EXPECT_EQ(this->state().message, TypeParam::success);
  EXPECT_EQ(TypeParam::used(this->state()), 40);
  EXPECT_EQ(TypeParam::resetAt(this->state()), this->time_.now() + std::chrono::seconds{90'000});
  EXPECT_EQ(this->state().lastSuccess, this->time_.now());
}

TYPED_TEST(QuotaProviderTest, ReportsThatMoreThanEverythingWasUsed) {
  this->configure();
  this->answerReading(100.5);
  EXPECT_EQ(this->state().status, TestFixture::Status::ready);
  EXPECT_EQ(this->state().message, TypeParam::overUsed);
  this->time_.advance(Seconds{180});
  this->answerReading(100);
  EXPECT_EQ(this->state().message, TypeParam::success);
}

TYPED_TEST(QuotaProviderTest, ClearsTheValuesForAResultWithoutThem) {
  for (const auto& refusal : TypeParam::refusals()) {
    this->becomeReady(Seconds{90'000});
    this->time_.advance(Seconds{180});
    this->takePublished();
    typename TestFixture::State expected = TypeParam::withoutValues(this->state());
    expected.status = refusal.status;
    expected.message = refusal.message;
    this->answer(refusal.result);
    EXPECT_THAT(this->published_, testing::ElementsAre(expected));
    if (expected.lastSuccess && refusal.wait) {
      this->expectQueryAfter(*refusal.wait);
    } else {
      this->expectNextQuery(refusal.wait);
    }
    this->provider_->shutdown();
  }
}

TYPED_TEST(QuotaProviderTest, DoesNothingAboutACancelledConversation) {
  this->configure();
  const typename TestFixture::State before = this->state();
  this->takePublished();
  this->answer(quota_result::Cancelled{});
  EXPECT_EQ(this->state(), before);
  EXPECT_THAT(this->published_, IsEmpty());
  EXPECT_EQ(this->time_.pendingCount(), 0U);
  EXPECT_FALSE(this->isConversing());
}

TYPED_TEST(QuotaProviderTest, CallsAFailureWithoutAnEarlierSuccessAnError) {
  this->configure();
  this->takePublished();
  this->answerFailure();
  ASSERT_EQ(this->published_.size(), 1U);
  EXPECT_EQ(this->published_[0].status, TestFixture::Status::error);
  EXPECT_EQ(this->published_[0].message,
            std::string(TypeParam::failure) + " Nova tentativa com atraso.");
}

TYPED_TEST(QuotaProviderTest, KeepsTheValueAsStaleAfterALaterFailure) {
  this->becomeReady(Seconds{90'000});
  typename TestFixture::State expected = this->state();
  this->time_.advance(Seconds{180});
  this->answerFailure();
  expected.status = TestFixture::Status::stale;
  expected.message = std::string(TypeParam::failure) + " Nova tentativa com atraso.";
  EXPECT_EQ(this->state(), expected);
  EXPECT_TRUE(this->state().isPresentable(this->time_.now()));
}

TYPED_TEST(QuotaProviderTest, TreatsAnAnswerThatCannotBeDecodedAsAFailure) {
  this->configure();
  this->answerJson("[]");
  EXPECT_EQ(this->state().status, TestFixture::Status::error);
  EXPECT_EQ(this->state().message,
            std::string(TypeParam::undecodable) + " Nova tentativa com atraso.");
}

TYPED_TEST(QuotaProviderTest, LeavesTheShownValueAloneDuringARoutineRefresh) {
  this->becomeReady();
  this->time_.advance(Seconds{180});
  EXPECT_TRUE(this->isConversing());
  EXPECT_THAT(this->published_, IsEmpty());
  EXPECT_EQ(this->state().status, TestFixture::Status::ready);
}

TYPED_TEST(QuotaProviderTest, ReportsAtOnceThatTheExecutableIsMissing) {
  this->executable_.reset();
  this->configure();
  ASSERT_EQ(this->published_.size(), 2U);
  EXPECT_EQ(this->published_[0].message, TypeParam::startMessage);
  const auto missing = TypeParam::missingExecutable(this->state());
  EXPECT_EQ(this->published_[1].status, missing.status);
  EXPECT_EQ(this->published_[1].message, missing.message);
  EXPECT_EQ(this->clientCount(), 0U);
  this->executable_ = AssistantExecutable{"/opt/other", "/opt/other"};
  this->expectNextQuery(missing.wait);
}

TYPED_TEST(QuotaProviderTest, DropsTheValueWhenTheExecutableVanishes) {
  this->becomeReady(Seconds{90'000});
  const auto missing = TypeParam::missingExecutable(this->state());
  typename TestFixture::State expected = missing.result;
  expected.status = missing.status;
  expected.message = missing.message;
  this->executable_.reset();
  this->time_.advance(Seconds{180});
  EXPECT_EQ(this->state(), expected);
  this->executable_ = AssistantExecutable{"/opt/other", "/opt/other"};
  this->provider_->manualRefresh();
  EXPECT_EQ(this->client()->executable, this->executable_);
}

TYPED_TEST(QuotaProviderTest, DescribesTheExecutable) {
  EXPECT_EQ(this->provider_->executableDescription(), "/opt/tool");
  this->executable_.reset();
  EXPECT_EQ(this->provider_->executableDescription(), TypeParam::notFound);
}

}  // namespace
}  // namespace vantora
