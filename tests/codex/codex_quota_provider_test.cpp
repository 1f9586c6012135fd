// SPDX-License-Identifier: MIT
//
// When the provider runs, what each result makes of the state, and what the user's
// requests do. Its timers are tested in codex_quota_schedule_test.cpp.
#include "codex/codex_quota_provider.hpp"

#include <gmock/gmock.h>

#include "codex/codex_provider_fixture.hpp"
#include "support/time_zone.hpp"

namespace vantora {
namespace {

using test::CodexQuotaProviderTest;
using testing::ElementsAre;
using testing::IsEmpty;
using Status = CodexQuotaStatus;

constexpr const char* queryingMessage = "Consultando a cota semanal pelo App Server oficial.";
constexpr const char* verifyingMessage = "Verificando a sessão existente do Codex.";
constexpr const char* disabledMessage = "Integração desativada.";
constexpr const char* missingMessage = "Selecione uma instalação oficial do Codex CLI.";

TEST_F(CodexQuotaProviderTest, BeginsDisabledAndPublishesNothingUnasked) {
  EXPECT_EQ(state(), CodexQuotaState{});
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(CodexQuotaProviderTest, VerifiesTheSessionAndQueriesWhenItIsWanted) {
  configure();
  ASSERT_EQ(published_.size(), 2U);
  EXPECT_EQ(published_[0].status, Status::connecting);
  EXPECT_EQ(published_[0].message, verifyingMessage);
  EXPECT_TRUE(published_[0].settings.enabled);
  EXPECT_EQ(published_[1].status, Status::connecting);
  EXPECT_EQ(published_[1].message, queryingMessage);
  EXPECT_EQ(client()->executable, "/opt/codex");
  EXPECT_EQ(client()->mode, CodexClientMode::read);
  EXPECT_EQ(client()->starts, 1);
  EXPECT_FALSE(client()->onLoginURL);
}

TEST_F(CodexQuotaProviderTest, IsWantedForEitherMetric) {
  configuration_.modules[0].bottom = MetricID::none;
  configure();
  EXPECT_EQ(clientCount(), 1U);
  provider_->shutdown();
  configuration_.modules[0].top = MetricID::none;
  configuration_.modules[0].bottom = MetricID::codexWeeklyReset;
  configure();
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(CodexQuotaProviderTest, StaysDisabledUnlessEverythingIsThere) {
  const auto expectDisabled = [this](bool sleeping) {
    configure(sleeping);
    ASSERT_EQ(published_.size(), 1U);
    EXPECT_EQ(published_[0].status, Status::disabled);
    EXPECT_EQ(published_[0].message, disabledMessage);
    EXPECT_EQ(published_[0].settings, configuration_.codexSettings.value_or(CodexQuotaSettings{}));
    EXPECT_EQ(clientCount(), 0U);
    EXPECT_EQ(time_.pendingCount(), 0U);
    published_.clear();
  };
  settings().showUsed = true;
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
  configuration_.codexSettings.reset();
  expectDisabled(false);
}

TEST_F(CodexQuotaProviderTest, StopsWhenItsModuleIsTurnedOff) {
  becomeReady();
  configuration_.modules[0].enabled = false;
  configure();
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::disabled);
  EXPECT_EQ(published_[0].message, disabledMessage);
  EXPECT_FALSE(published_[0].usedPercent);
  EXPECT_FALSE(published_[0].lastSuccess);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(CodexQuotaProviderTest, StopsForSleepAndBeginsAgainAfterWaking) {
  becomeReady();
  configure(true);
  EXPECT_EQ(takePublished().back().status, Status::disabled);
  EXPECT_EQ(time_.pendingCount(), 0U);
  time_.advance(Seconds{5});
  configure(false);
  ASSERT_EQ(published_.size(), 2U);
  EXPECT_EQ(published_[0].message, verifyingMessage);
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(CodexQuotaProviderTest, CancelsTheConversationWhenItStops) {
  configure();
  const auto running = client();
  configure(true);
  EXPECT_EQ(running->cancels, 1);
  EXPECT_EQ(running.use_count(), 1);
}

TEST_F(CodexQuotaProviderTest, DropsTheResultOfAConversationFromBeforeAStop) {
  configure();
  const auto old = client();
  provider_->shutdown();
  const CodexQuotaState before = state();
  takePublished();
  old->completion(codex_result::NeedsAuthentication{});
  EXPECT_EQ(state(), before);
  configure();
  takePublished();
  old->completion(codex_result::NeedsAuthentication{});
  EXPECT_EQ(state().status, Status::connecting);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_TRUE(isConversing());
}

TEST_F(CodexQuotaProviderTest, SurvivesAResultAndALoginPageAfterItsEnd) {
  becomeLoggedOut();
  provider_->connectInBrowser();
  const auto running = client();
  provider_.reset();
  EXPECT_EQ(running->cancels, 1);
  running->onLoginURL("https://auth.openai.com/x");
  running->completion(codex_result::NeedsAuthentication{});
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(CodexQuotaProviderTest, KeepsTheStateOnShutdownAndPublishesNothing) {
  becomeReady();
  const CodexQuotaState before = state();
  provider_->shutdown();
  EXPECT_EQ(state(), before);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(CodexQuotaProviderTest, ShowsTheWeeklyValue) {
  configure();
  takePublished();
  answerQuota(42.5, Seconds{90'000}, R"(,"accountId":"acc","ordinaryUsageAllowed":true)");
  ASSERT_EQ(published_.size(), 1U);
  const CodexQuotaState& ready = published_[0];
  EXPECT_EQ(ready.status, Status::ready);
  EXPECT_EQ(ready.usedPercent, 42.5);
  EXPECT_EQ(ready.resetAt, time_.now() + std::chrono::seconds{90'000});
  EXPECT_EQ(ready.lastSuccess, time_.now());
  EXPECT_EQ(ready.limitID, "codex");
  EXPECT_EQ(ready.accountID, "acc");
  EXPECT_EQ(ready.ordinaryUsageAllowed, true);
  EXPECT_THAT(ready.candidates, ElementsAre(CodexQuotaCandidate{"codex", std::nullopt}));
  EXPECT_EQ(ready.message, "Cota semanal da categoria codex, consultada com sucesso.");
  EXPECT_EQ(ready, state());
}

TEST_F(CodexQuotaProviderTest, SaysThatMoreThanEverythingWasUsedBeforeAnythingElse) {
  configure();
  answerQuota(100.5, {}, R"(,"ordinaryUsageAllowed":false)");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_EQ(state().message, "O servidor informou uso acima de 100%.");
}

TEST_F(CodexQuotaProviderTest, SaysThatTheServiceBlocksOrdinaryUse) {
  configure();
  answerQuota(100, {}, R"(,"ordinaryUsageAllowed":false)");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_EQ(state().message, "Uso comum bloqueado pelo serviço; saldo não libera acesso.");
}

TEST_F(CodexQuotaProviderTest, SaysThatThereIsNoWeeklyWindow) {
  becomeReady(Seconds{90'000});
  const auto lastSuccess = state().lastSuccess;
  time_.advance(Seconds{180});
  answer(codex_result::Quota{R"({"rateLimitsByLimitId":{"a":{"limitName":"A"}}})"});
  EXPECT_EQ(state().status, Status::weeklyUnavailable);
  EXPECT_EQ(state().message, "Nenhuma janela de 10.080 minutos foi retornada.");
  EXPECT_FALSE(state().usedPercent);
  EXPECT_FALSE(state().resetAt);
  EXPECT_EQ(state().lastSuccess, lastSuccess);
  EXPECT_THAT(state().candidates, ElementsAre(CodexQuotaCandidate{"a", "A"}));
}

TEST_F(CodexQuotaProviderTest, AsksForAChoiceAndFollowsIt) {
  const codex_result::Quota two{R"({"rateLimitsByLimitId":{
    "a":{"primary":{"usedPercent":10,"windowDurationMins":10080}},
    "b":{"primary":{"usedPercent":20,"windowDurationMins":10080}}}})"};
  configure();
  answer(two);
  EXPECT_EQ(state().status, Status::selectionRequired);
  EXPECT_EQ(state().message, "Escolha uma categoria de cota semanal nas configurações.");
  EXPECT_FALSE(state().usedPercent);
  EXPECT_EQ(state().candidates.size(), 2U);

  settings().selectedLimitID = "b";
  takePublished();
  configure();
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::connecting);
  EXPECT_EQ(published_[0].message, queryingMessage);
  EXPECT_EQ(published_[0].settings.selectedLimitID, "b");
  answer(two);
  EXPECT_EQ(state().usedPercent, 20);

  settings().selectedLimitID = "c";
  takePublished();
  configure();
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::connecting) << "no routine refresh";
  EXPECT_EQ(published_[0].usedPercent, 20);
  answer(two);
  EXPECT_EQ(state().status, Status::selectionRequired);
  EXPECT_EQ(state().message, "A categoria escolhida não consta da resposta atual.");
  EXPECT_FALSE(state().usedPercent);
  EXPECT_EQ(state().candidates.size(), 2U);

  settings().selectedLimitID.reset();
  configure();
  EXPECT_TRUE(isConversing());
}

TEST_F(CodexQuotaProviderTest, AppliesAChoiceMadeDuringAQueryToItsResult) {
  configure();
  settings().selectedLimitID = "b";
  takePublished();
  configure();
  EXPECT_EQ(clientCount(), 1U);
  EXPECT_THAT(published_, IsEmpty());
  answer(codex_result::Quota{R"({"rateLimitsByLimitId":{
    "a":{"primary":{"usedPercent":10,"windowDurationMins":10080}},
    "b":{"primary":{"usedPercent":20,"windowDurationMins":10080}}}})"});
  EXPECT_EQ(state().usedPercent, 20);
}

struct Refusal {
  CodexClientResult result;
  Status status;
  const char* message;
};

class CodexRefusalTest : public CodexQuotaProviderTest,
                         public testing::WithParamInterface<Refusal> {};

TEST_P(CodexRefusalTest, ClearsTheValuesAndWaitsForTheUser) {
  becomeReady(Seconds{90'000});
  const auto lastSuccess = state().lastSuccess;
  time_.advance(Seconds{180});
  takePublished();
  answer(GetParam().result);
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, GetParam().status);
  EXPECT_EQ(published_[0].message, GetParam().message);
  EXPECT_FALSE(published_[0].usedPercent);
  EXPECT_FALSE(published_[0].resetAt);
  EXPECT_THAT(published_[0].candidates, IsEmpty());
  EXPECT_EQ(published_[0].lastSuccess, lastSuccess);
  EXPECT_EQ(published_[0].limitID, "codex");
  EXPECT_EQ(time_.pendingCount(), 0U);
  expectNoQueryForADay();
}

INSTANTIATE_TEST_SUITE_P(
    Results, CodexRefusalTest,
    testing::Values(
        Refusal{codex_result::NeedsAuthentication{}, Status::needsAuthentication,
                "A sessão do CLI precisa de autenticação. Conecte pelo navegador quando desejar."},
        Refusal{codex_result::UnsupportedAccount{}, Status::permissionDenied,
                "A sessão acessível não é um login ChatGPT; nenhuma cota da assinatura foi usada."},
        Refusal{codex_result::PermissionDenied{}, Status::permissionDenied,
                "A conta ou política não permitiu esta consulta."},
        Refusal{codex_result::UnsupportedVersion{}, Status::unsupportedVersion,
                "Esta versão do Codex CLI não oferece o método necessário."}));

TEST_F(CodexQuotaProviderTest, DoesNothingAboutACancelledConversation) {
  configure();
  const CodexQuotaState before = state();
  takePublished();
  answer(codex_result::Cancelled{});
  EXPECT_EQ(state(), before);
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_FALSE(isConversing());
}

TEST_F(CodexQuotaProviderTest, CallsAFailureWithoutAnEarlierSuccessAnError) {
  configure();
  takePublished();
  answerFailure();
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::error);
  EXPECT_EQ(published_[0].message,
            "Tempo limite do App Server excedido. Nova tentativa com atraso.");
}

TEST_F(CodexQuotaProviderTest, KeepsTheValueAsStaleAfterALaterFailure) {
  becomeReady(Seconds{90'000});
  const CodexQuotaState ready = state();
  time_.advance(Seconds{180});
  answerFailure();
  CodexQuotaState expected = ready;
  expected.status = Status::stale;
  expected.message = "Tempo limite do App Server excedido. Nova tentativa com atraso.";
  EXPECT_EQ(state(), expected);
  EXPECT_TRUE(state().isPresentable(time_.now()));
}

TEST_F(CodexQuotaProviderTest, TakesAnAnswerThatCannotBeDecodedForAFailure) {
  configure();
  answer(codex_result::Quota{R"({"rateLimits":{"primary":{}}})"});
  EXPECT_EQ(state().status, Status::error);
  EXPECT_EQ(state().message, "Resposta de limites inválida. Nova tentativa com atraso.");
}

TEST_F(CodexQuotaProviderTest, LeavesTheShownValueAloneDuringARoutineRefresh) {
  becomeReady();
  time_.advance(Seconds{180});
  EXPECT_TRUE(isConversing());
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(state().status, Status::ready);
}

TEST_F(CodexQuotaProviderTest, SaysThatTheExecutableIsMissing) {
  executable_.reset();
  configure();
  ASSERT_EQ(published_.size(), 2U);
  EXPECT_EQ(published_[1].status, Status::dependencyMissing);
  EXPECT_EQ(published_[1].message, missingMessage);
  EXPECT_EQ(clientCount(), 0U);
  expectNoQueryForADay();
}

TEST_F(CodexQuotaProviderTest, DropsTheValueAndKeepsTheCandidatesWhenTheExecutableVanishes) {
  becomeReady(Seconds{90'000});
  executable_.reset();
  time_.advance(Seconds{180});
  EXPECT_EQ(state().status, Status::dependencyMissing);
  EXPECT_FALSE(state().usedPercent);
  EXPECT_FALSE(state().resetAt);
  EXPECT_EQ(state().candidates.size(), 1U);
  EXPECT_TRUE(state().lastSuccess);
  expectNoQueryForADay();
  executable_ = "/opt/other";
  provider_->manualRefresh();
  EXPECT_EQ(client()->executable, "/opt/other");
}

TEST_F(CodexQuotaProviderTest, DescribesTheExecutable) {
  EXPECT_EQ(provider_->executableDescription(), "/opt/codex");
  executable_.reset();
  EXPECT_EQ(provider_->executableDescription(), "Codex CLI não encontrado");
}

TEST_F(CodexQuotaProviderTest, BeginsAfreshWithAnotherExecutable) {
  becomeReady(Seconds{90'000});
  executable_ = "/opt/other";
  provider_->executableSelectionChanged();
  ASSERT_EQ(published_.size(), 2U);
  CodexQuotaState fresh;
  fresh.status = Status::connecting;
  fresh.settings = settings();
  EXPECT_EQ(fresh.message, disabledMessage);
  EXPECT_EQ(published_[0], fresh);
  EXPECT_EQ(published_[1].status, Status::connecting);
  EXPECT_EQ(published_[1].message, queryingMessage);
  EXPECT_EQ(client()->executable, "/opt/other");
}

TEST_F(CodexQuotaProviderTest, EndsTheRunningConversationForAnotherExecutable) {
  configure();
  const auto old = client();
  provider_->executableSelectionChanged();
  EXPECT_EQ(old->cancels, 1);
  EXPECT_EQ(clientCount(), 2U);
  old->completion(codex_result::NeedsAuthentication{});
  EXPECT_EQ(state().status, Status::connecting);
}

TEST_F(CodexQuotaProviderTest, IgnoresAnotherExecutableWhileDisabled) {
  provider_->executableSelectionChanged();
  EXPECT_EQ(clientCount(), 0U);
  EXPECT_THAT(published_, IsEmpty());
}

TEST_F(CodexQuotaProviderTest, LogsInThroughTheBrowserAndReadsTheQuota) {
  becomeLoggedOut();
  std::vector<std::string> opened;
  provider_->onLoginURL = [&](const std::string& url) { opened.push_back(url); };
  provider_->connectInBrowser();
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::connecting);
  EXPECT_EQ(published_[0].message, "Aguardando o início do login oficial no navegador.");
  EXPECT_EQ(client()->mode, CodexClientMode::login);
  EXPECT_EQ(client()->starts, 1);
  EXPECT_THAT(opened, IsEmpty());

  takePublished();
  client()->onLoginURL("https://auth.openai.com/authorize");
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(published_[0].status, Status::connecting);
  EXPECT_EQ(published_[0].message,
            "Conclua o login no navegador; o saldo só será lido após confirmação.");
  EXPECT_THAT(opened, ElementsAre("https://auth.openai.com/authorize"));

  answerQuota(10);
  EXPECT_EQ(state().status, Status::ready);
  expectQueryAfter(Seconds{180});
  EXPECT_EQ(client()->mode, CodexClientMode::read);
}

TEST_F(CodexQuotaProviderTest, ReturnsToTheLoginWhenItDoesNotSucceed) {
  becomeLoggedOut();
  provider_->connectInBrowser();
  answer(codex_result::NeedsAuthentication{});
  EXPECT_EQ(state().status, Status::needsAuthentication);
  expectNoQueryForADay();
  provider_->connectInBrowser();
  EXPECT_TRUE(isConversing());
}

TEST_F(CodexQuotaProviderTest, OffersTheLoginToALoggedOutCLIOnly) {
  provider_->connectInBrowser();
  EXPECT_EQ(clientCount(), 0U);
  becomeReady();
  provider_->connectInBrowser();
  EXPECT_EQ(clientCount(), 1U);
  EXPECT_EQ(state().status, Status::ready);
}

TEST_F(CodexQuotaProviderTest, DoesNotLogInTwiceAtOnce) {
  becomeLoggedOut();
  provider_->connectInBrowser();
  provider_->connectInBrowser();
  EXPECT_EQ(clientCount(), 2U);
}

TEST_F(CodexQuotaProviderTest, OpensNoLoginPageOfAConversationFromBeforeAStop) {
  becomeLoggedOut();
  int opened = 0;
  provider_->onLoginURL = [&](const std::string&) { ++opened; };
  provider_->connectInBrowser();
  const auto old = client();
  configure(true);
  takePublished();
  old->onLoginURL("https://auth.openai.com/x");
  EXPECT_EQ(opened, 0);
  EXPECT_THAT(published_, IsEmpty());
}

TEST_F(CodexQuotaProviderTest, SaysThatTheExecutableIsMissingForTheLogin) {
  becomeLoggedOut();
  executable_.reset();
  provider_->connectInBrowser();
  EXPECT_EQ(state().status, Status::dependencyMissing);
  EXPECT_EQ(state().message, missingMessage);
  EXPECT_EQ(clientCount(), 1U);
}

TEST_F(CodexQuotaProviderTest, ReadsTheTimeZoneAnewWithEachValue) {
  const test::PinnedTimeZone zone("UTC0");
  becomeReady();
  setenv("TZ", "<-03>3", 1);
  time_.advance(Seconds{180});
  answerQuota(10);
  const std::time_t midnight = 0;
  std::tm local{};
  localtime_r(&midnight, &local);
  EXPECT_EQ(local.tm_hour, 21);
}

}  // namespace
}  // namespace vantora
