// SPDX-License-Identifier: MIT
//
// What the Codex provider does differently: categories, the browser login, another executable and
// the countdown. What both providers do is in tests/quota.
#include "quota/codex/codex_quota_provider.hpp"

#include <gmock/gmock.h>

#include "quota/codex/codex_quota_formatter.hpp"
#include "quota/provider_fixture.hpp"
#include "support/time_zone.hpp"

namespace vantora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Status = CodexQuotaStatus;

constexpr const char* queryingMessage = test::CodexCase::queryMessage;
constexpr const char* disabledMessage = "Integração desativada.";
constexpr const char* missingMessage = "Selecione uma instalação oficial do Codex CLI.";

class CodexQuotaProviderTest : public test::QuotaProviderFixture<test::CodexCase> {
 protected:
  void answerQuota(double used, std::optional<Seconds> resetIn = std::nullopt,
                   const std::string& more = {}) {
    std::string json = test::CodexCase::reading(
        used, resetIn ? test::UnixReset(unixSeconds(wholeSecondFromNow(*resetIn))) : std::nullopt);
    json.insert(json.size() - 1, more);
    answerJson(json);
  }
  void becomeLoggedOut() {
    configure();
    answer(quota_result::NeedsAuthentication{});
    ASSERT_EQ(state().status, Status::needsAuthentication);
    takePublished();
  }
};

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

TEST_F(CodexQuotaProviderTest, ReportsThatMoreThanEverythingWasUsedBeforeAnythingElse) {
  configure();
  answerQuota(100.5, {}, R"(,"ordinaryUsageAllowed":false)");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_EQ(state().message, "O servidor informou uso acima de 100%.");
}

TEST_F(CodexQuotaProviderTest, ReportsThatTheServiceBlocksOrdinaryUse) {
  configure();
  answerQuota(100, {}, R"(,"ordinaryUsageAllowed":false)");
  EXPECT_EQ(state().status, Status::ready);
  EXPECT_EQ(state().message, "Uso comum bloqueado pelo serviço; saldo não libera acesso.");
}

TEST_F(CodexQuotaProviderTest, ReportsThatThereIsNoWeeklyWindow) {
  becomeReady(Seconds{90'000});
  const auto lastSuccess = state().lastSuccess;
  time_.advance(Seconds{180});
  answer(quota_result::Answer{R"({"rateLimitsByLimitId":{"a":{"limitName":"A"}}})"});
  EXPECT_EQ(state().status, Status::weeklyUnavailable);
  EXPECT_EQ(state().message, "Nenhuma janela de 10.080 minutos foi retornada.");
  EXPECT_FALSE(state().usedPercent);
  EXPECT_FALSE(state().resetAt);
  EXPECT_EQ(state().lastSuccess, lastSuccess);
  EXPECT_THAT(state().candidates, ElementsAre(CodexQuotaCandidate{"a", "A"}));
}

TEST_F(CodexQuotaProviderTest, AsksForAChoiceAndFollowsIt) {
  const quota_result::Answer two{R"({"rateLimitsByLimitId":{
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
  answer(quota_result::Answer{R"({"rateLimitsByLimitId":{
    "a":{"primary":{"usedPercent":10,"windowDurationMins":10080}},
    "b":{"primary":{"usedPercent":20,"windowDurationMins":10080}}}})"});
  EXPECT_EQ(state().usedPercent, 20);
}

TEST_F(CodexQuotaProviderTest, SurvivesAResultAndALoginPageAfterItsEnd) {
  becomeLoggedOut();
  provider_->connectInBrowser();
  const auto running = client();
  provider_.reset();
  EXPECT_EQ(running->cancels, 1);
  running->onLoginURL("https://auth.openai.com/x");
  running->completion(quota_result::NeedsAuthentication{});
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(CodexQuotaProviderTest, StartsAgainWithAnotherExecutable) {
  becomeReady(Seconds{90'000});
  executable_ = AssistantExecutable{"/opt/other", "/opt/other"};
  provider_->executableSelectionChanged();
  ASSERT_EQ(published_.size(), 2U);
  CodexQuotaState fresh;
  fresh.status = Status::connecting;
  fresh.settings = settings();
  EXPECT_EQ(fresh.message, disabledMessage);
  EXPECT_EQ(published_[0], fresh);
  EXPECT_EQ(published_[1].status, Status::connecting);
  EXPECT_EQ(published_[1].message, queryingMessage);
  EXPECT_EQ(client()->executable.path, "/opt/other");
}

TEST_F(CodexQuotaProviderTest, EndsTheRunningConversationForAnotherExecutable) {
  configure();
  const auto old = client();
  provider_->executableSelectionChanged();
  EXPECT_EQ(old->cancels, 1);
  EXPECT_EQ(clientCount(), 2U);
  old->completion(quota_result::NeedsAuthentication{});
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
  answer(quota_result::NeedsAuthentication{});
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

TEST_F(CodexQuotaProviderTest, ReportsThatTheExecutableIsMissingForTheLogin) {
  becomeLoggedOut();
  executable_.reset();
  provider_->connectInBrowser();
  EXPECT_EQ(state().status, Status::dependencyMissing);
  EXPECT_EQ(state().message, missingMessage);
  EXPECT_EQ(clientCount(), 1U);
}

TEST_F(CodexQuotaProviderTest, ReadsTheTimeZoneAgainWithEachValue) {
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

TEST_F(CodexQuotaProviderTest, QueriesAtTheIntervalWithoutAWeeklyValueToo) {
  configure();
  answer(quota_result::Answer{"{}"});
  EXPECT_EQ(state().status, Status::weeklyUnavailable);
  expectQueryAfter(Seconds{180});
  answer(quota_result::Answer{R"({"rateLimits":{
    "primary":{"usedPercent":1,"windowDurationMins":10080},
    "secondary":{"usedPercent":1,"windowDurationMins":10080}}})"});
  EXPECT_EQ(state().status, Status::selectionRequired);
  expectQueryAfter(Seconds{180});
}

TEST_F(CodexQuotaProviderTest, QueriesALoggedOutCLIAgainWhenTheIntervalChanges) {
  becomeLoggedOut();
  time_.advance(Seconds{10});
  settings().intervalMinutes = 1;
  configure();
  expectQueryAfter(Seconds{50});
}

TEST_F(CodexQuotaProviderTest, CountsALoginAsNoQuery) {
  becomeLoggedOut();
  time_.advance(Seconds{30});
  provider_->connectInBrowser();
  answer(quota_result::NeedsAuthentication{});
  takePublished();
  provider_->manualRefresh();
  EXPECT_TRUE(isConversing());
}

TEST_F(CodexQuotaProviderTest, TakesTheScheduledQueryOffDuringALogin) {
  becomeLoggedOut();
  settings().intervalMinutes = 1;
  configure();
  provider_->connectInBrowser();
  EXPECT_EQ(clientCount(), 2U);
  expectNoQueryForADay();
}

TEST_F(CodexQuotaProviderTest, PublishesWhenTheCountdownMovesOn) {
  settings().intervalMinutes = 10;
  becomeReady(Seconds{3600 + 90});
  EXPECT_EQ(CodexQuotaFormatter::text(MetricID::codexWeeklyReset, state(), time_.now()), "1h1m");
  expectPublishedAfter(Seconds{30.1});
  EXPECT_EQ(CodexQuotaFormatter::text(MetricID::codexWeeklyReset, state(), time_.now()), "1h0m");
  expectPublishedAfter(Seconds{60});
  expectPublishedAfter(Seconds{60});
}

TEST_F(CodexQuotaProviderTest, PublishesNothingForACountdownThatIsNotShown) {
  settings().intervalMinutes = 10;
  showPercentOnly();
  becomeReady(Seconds{3690});
  time_.advance(Seconds{599});
  EXPECT_THAT(published_, IsEmpty());
}

TEST_F(CodexQuotaProviderTest, PublishesNothingForADateThatIsShown) {
  settings().intervalMinutes = 10;
  settings().showResetDate = true;
  becomeReady(Seconds{3690});
  time_.advance(Seconds{300});
  EXPECT_THAT(published_, IsEmpty());
  settings().showResetDate = false;
  configure();
  expectPublishedAfter(Seconds{30.1});
}

TEST_F(CodexQuotaProviderTest, CountsDownAgainAfterAFailureThatFollowsAForcedQuery) {
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

TEST_F(CodexQuotaProviderTest, PublishesAtThirtyMinutesEvenWithoutAValue) {
  settings().intervalMinutes = 10;
  becomeReady();
  time_.advance(Seconds{600});
  answer(quota_result::Answer{"{}"});
  time_.advance(Seconds{600});
  answer(quota_result::Answer{"{}"});
  takePublished();
  // The query at the same instant was scheduled last and runs second.
  time_.advance(Seconds{600} - justBefore);
  EXPECT_THAT(published_, IsEmpty());
  time_.advance(justBefore);
  EXPECT_EQ(published_.size(), 1U);
}

}  // namespace
}  // namespace vantora
