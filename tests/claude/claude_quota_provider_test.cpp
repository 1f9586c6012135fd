// SPDX-License-Identifier: MIT
//
// When the provider runs, what each result makes of the state, and what the user's
// requests do. Its timers are tested in claude_quota_schedule_test.cpp.
#include "claude/claude_quota_provider.hpp"

#include <gmock/gmock.h>

#include "claude/claude_provider_fixture.hpp"

namespace vantora {
namespace {

using test::ClaudeQuotaProviderTest;
using testing::IsEmpty;
using Status = ClaudeQuotaStatus;

constexpr const char* queryingMessage = "Consultando os limites pelo Claude Code.";
constexpr const char* loginMessage =
    "O Claude Code deste Mac não tem login de assinatura Claude. No Terminal, rode claude e use "
    "/login.";
constexpr const char* missingMessage =
    "Claude Code (claude) não encontrado. Instale o CLI oficial para ler os limites.";

TEST_F(ClaudeQuotaProviderTest, BeginsDisabledAndPublishesNothingUnasked) {
  EXPECT_EQ(state(), ClaudeQuotaState{});
  EXPECT_EQ(state().message, "Integração desativada.");
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(ClaudeQuotaProviderTest, ConnectsAndQueriesWhenItIsWanted) {
  configure();
  ASSERT_EQ(published_.size(), 2U);
  for (const ClaudeQuotaState& published : published_) {
    EXPECT_EQ(published.status, Status::connecting);
    EXPECT_EQ(published.message, queryingMessage);
    EXPECT_TRUE(published.settings.enabled);
  }
  EXPECT_EQ(client()->executable, "/opt/claude");
  EXPECT_EQ(client()->starts, 1);
}

TEST_F(ClaudeQuotaProviderTest, IsWantedForEitherMetric) {
  configuration_.modules[0].bottom = MetricID::none;
  configure();
  EXPECT_EQ(clientCount(), 1U);
  provider_->shutdown();
  configuration_.modules[0].top = MetricID::claudeSessionPercent;
  configure();
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(ClaudeQuotaProviderTest, StaysDisabledUnlessEverythingIsThere) {
  const auto expectDisabled = [this](bool sleeping) {
    configure(sleeping);
    ASSERT_EQ(published_.size(), 1U);
    EXPECT_EQ(published_[0].status, Status::disabled);
    EXPECT_EQ(published_[0].message, "Integração desativada.");
    EXPECT_EQ(published_[0].settings,
              configuration_.claudeSettings.value_or(ClaudeQuotaSettings{}));
    EXPECT_EQ(clientCount(), 0U);
    EXPECT_EQ(time_.pendingCount(), 0U);
    published_.clear();
  };
  settings().oneDecimal = true;
  expectDisabled(true);
  settings().enabled = false;
  expectDisabled(false);
  settings().enabled = true;
  configuration_.paused = true;
  expectDisabled(false);
  configuration_.paused = false;
  configuration_.modules[0].enabled = false;
  expectDisabled(false);
  configuration_.modules.clear();
  expectDisabled(false);
  configuration_.claudeSettings.reset();
  expectDisabled(false);
}

TEST_F(ClaudeQuotaProviderTest, StopsForPauseAndBeginsAgainAtOnce) {
  becomeReady();
  configuration_.paused = true;
  configure();
  ASSERT_EQ(published_.size(), 1U);
  ClaudeQuotaState disabled;
  disabled.settings = settings();
  EXPECT_EQ(published_[0], disabled);
  EXPECT_EQ(time_.pendingCount(), 0U);
  takePublished();
  configuration_.paused = false;
  configure();
  EXPECT_EQ(published_.front().status, Status::connecting);
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(ClaudeQuotaProviderTest, CancelsTheQueryForSleep) {
  configure();
  const auto running = client();
  configure(true);
  EXPECT_EQ(running->cancels, 1);
  EXPECT_EQ(running.use_count(), 1);
  EXPECT_EQ(state().status, Status::disabled);
}

TEST_F(ClaudeQuotaProviderTest, DropsTheResultOfAQueryFromBeforeAStop) {
  configure();
  const auto old = client();
  configure(true);
  takePublished();
  old->completion(claude_result::NeedsAuthentication{});
  EXPECT_EQ(state().status, Status::disabled);
  configure(false);
  takePublished();
  old->completion(claude_result::NeedsAuthentication{});
  EXPECT_EQ(state().status, Status::connecting);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_TRUE(isAsking());
}

TEST_F(ClaudeQuotaProviderTest, SurvivesAResultAfterItsEnd) {
  configure();
  const auto running = client();
  provider_.reset();
  EXPECT_EQ(running->cancels, 1);
  running->completion(claude_result::NeedsAuthentication{});
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(ClaudeQuotaProviderTest, KeepsTheStateOnShutdownAndPublishesNothing) {
  becomeReady();
  const ClaudeQuotaState before = state();
  provider_->shutdown();
  EXPECT_EQ(state(), before);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

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
  answerUsage(R"({"rate_limits":{"five_hour":{"utilization":3}}})");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_FALSE(state().weeklyUsed);
  EXPECT_FALSE(state().weeklyResetAt);
  EXPECT_EQ(state().sessionUsed, 3);
  EXPECT_FALSE(state().sessionResetAt);
}

TEST_F(ClaudeQuotaProviderTest, SaysThatMoreThanEverythingWasUsed) {
  configure();
  answerUsage(R"({"rate_limits":{"seven_day":{"utilization":100.5}}})");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_EQ(state().message, "O serviço informou uso acima de 100%.");
  time_.advance(Seconds{180});
  answerUsage(R"({"rate_limits":{"seven_day":{"utilization":100}}})");
  EXPECT_EQ(state().message, "Limites do Claude (semanal e 5 horas) consultados com sucesso.");
}

struct Clearing {
  ClaudeClientResult result;
  Status status;
  const char* message;
  double seconds;  ///< until the next query at an interval of 3 minutes
};

class ClaudeClearingTest : public ClaudeQuotaProviderTest,
                           public testing::WithParamInterface<Clearing> {};

TEST_P(ClaudeClearingTest, ClearsTheValuesAndQueriesLater) {
  becomeReady();
  time_.advance(Seconds{180});
  takePublished();
  answer(GetParam().result);
  ASSERT_EQ(published_.size(), 1U);
  ClaudeQuotaState expected;
  expected.status = GetParam().status;
  expected.message = GetParam().message;
  expected.settings = settings();
  EXPECT_EQ(published_[0], expected);
  EXPECT_EQ(time_.pendingCount(), 1U);
  expectQueryAfter(Seconds{GetParam().seconds});
  // Without an earlier success the query is seen.
  EXPECT_EQ(state().status, Status::connecting);
  EXPECT_EQ(state().message, queryingMessage);
}

INSTANTIATE_TEST_SUITE_P(
    Results, ClaudeClearingTest,
    testing::Values(
        Clearing{claude_result::NeedsAuthentication{}, Status::needsAuthentication, loginMessage,
                 600},
        Clearing{claude_result::Usage{R"({"rate_limits_available":false,"rate_limits":null})"},
                 Status::needsAuthentication, loginMessage, 600},
        Clearing{claude_result::Usage{"{}"}, Status::limitsUnavailable,
                 "O Claude Code não recebeu as janelas semanal e de 5 horas desta conta.", 180},
        Clearing{claude_result::UnsupportedVersion{}, Status::unsupportedVersion,
                 "Esta versão do Claude Code não oferece a consulta de uso. Atualize com claude "
                 "update.",
                 1800}));

TEST_F(ClaudeQuotaProviderTest, DoesNothingAboutACancelledQuery) {
  configure();
  const ClaudeQuotaState before = state();
  takePublished();
  answer(claude_result::Cancelled{});
  EXPECT_EQ(state(), before);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_FALSE(isAsking());
}

TEST_F(ClaudeQuotaProviderTest, CallsAFailureWithoutAnEarlierSuccessAnError) {
  configure();
  takePublished();
  answerFailure();
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::error);
  EXPECT_EQ(published_[0].message,
            "Tempo limite do Claude Code excedido. Nova tentativa com atraso.");
}

TEST_F(ClaudeQuotaProviderTest, KeepsTheValuesAsStaleAfterALaterFailure) {
  becomeReady();
  ClaudeQuotaState expected = state();
  time_.advance(Seconds{180});
  answerFailure();
  expected.status = Status::stale;
  expected.message = "Tempo limite do Claude Code excedido. Nova tentativa com atraso.";
  EXPECT_EQ(state(), expected);
}

TEST_F(ClaudeQuotaProviderTest, TakesAnAnswerThatCannotBeDecodedForAFailure) {
  configure();
  answerUsage("[]");
  EXPECT_EQ(state().status, Status::error);
  EXPECT_EQ(state().message, "Resposta de uso inválida. Nova tentativa com atraso.");
}

TEST_F(ClaudeQuotaProviderTest, CallsAFailureAfterALostLoginAnError) {
  becomeReady();
  time_.advance(Seconds{180});
  answer(claude_result::NeedsAuthentication{});
  time_.advance(Seconds{600});
  answerFailure();
  EXPECT_EQ(state().status, Status::error);
}

TEST_F(ClaudeQuotaProviderTest, LeavesTheShownValuesAloneDuringARoutineRefresh) {
  becomeReady();
  time_.advance(Seconds{180});
  EXPECT_TRUE(isAsking());
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(state().status, Status::ready);
}

TEST_F(ClaudeQuotaProviderTest, SaysThatTheExecutableIsMissingAndLooksAgain) {
  becomeReady();
  executable_.reset();
  time_.advance(Seconds{180});
  ASSERT_EQ(published_.size(), 1U);
  ClaudeQuotaState expected;
  expected.status = Status::dependencyMissing;
  expected.message = missingMessage;
  expected.settings = settings();
  EXPECT_EQ(published_[0], expected);
  EXPECT_EQ(time_.pendingCount(), 1U);
  executable_ = "/opt/other";
  expectQueryAfter(Seconds{600});
  EXPECT_EQ(client()->executable, "/opt/other");
}

TEST_F(ClaudeQuotaProviderTest, SaysAtOnceThatTheExecutableIsMissing) {
  executable_.reset();
  configure();
  ASSERT_EQ(published_.size(), 2U);
  EXPECT_EQ(published_[0].message, queryingMessage);
  EXPECT_EQ(published_[1].status, Status::dependencyMissing);
  EXPECT_EQ(published_[1].message, missingMessage);
}

TEST_F(ClaudeQuotaProviderTest, DescribesTheExecutable) {
  EXPECT_EQ(provider_->executableDescription(), "/opt/claude");
  executable_.reset();
  EXPECT_EQ(provider_->executableDescription(), "Claude Code (claude) não encontrado");
}

}  // namespace
}  // namespace vantora
