// SPDX-License-Identifier: MIT
//
// The client with a scripted App Server, under virtual time.
#include "codex/codex_app_server_client.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using codex_result::Cancelled;
using codex_result::Failure;
using codex_result::NeedsAuthentication;
using codex_result::Quota;
using test::ScriptedLauncher;
using test::ScriptedProcess;
using test::VirtualTime;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr Seconds moment{0.001};
constexpr const char* initialized = "{\"id\":1,\"result\":{}}\n";
constexpr const char* account = "{\"id\":2,\"result\":{\"account\":{\"type\":\"chatgpt\"}}}\n";
constexpr const char* limits = "{\"id\":3,\"result\":{\"rateLimits\":{}}}\n";
constexpr const char* loginStarted =
    "{\"id\":4,\"result\":{\"type\":\"chatgpt\",\"loginId\":\"L1\","
    "\"authUrl\":\"https://chatgpt.com/login\"}}\n";
constexpr const char* loginCompleted =
    "{\"method\":\"account/login/completed\",\"params\":{\"loginId\":\"L1\",\"success\":true}}\n";

constexpr const char* couldNotStart = "Não foi possível iniciar o executável Codex selecionado.";
constexpr const char* late = "Tempo limite do App Server excedido.";
constexpr const char* inputClosed = "O App Server fechou a entrada antes da consulta.";
constexpr const char* outputClosed = "O App Server fechou a saída.";
constexpr const char* ended = "O processo auxiliar encerrou antes de responder.";
constexpr const char* overLimit = "Resposta do App Server acima do limite.";
constexpr const char* invalid = "Resposta inválida do App Server.";

class CodexAppServerClientTest : public testing::Test {
 protected:
  void make(CodexClientMode mode = CodexClientMode::read) {
    client = std::make_shared<CodexAppServerClient>(
        ConversationHost{*queue, *main, launcher, "/home/user/.config/Vantora"},
        "/usr/local/bin/codex", mode, [this](std::string url) { urls.push_back(std::move(url)); },
        [this](std::int32_t id) { ids.push_back(id); },
        [this](CodexClientResult result) { results.push_back(std::move(result)); });
  }
  void start(CodexClientMode mode = CodexClientMode::read) {
    make(mode);
    client->start();
    time.runPosted();
  }
  ScriptedProcess& child() { return launcher.latest(); }
  void say(std::string bytes) {
    child().output(std::move(bytes));
    time.runPosted();
  }
  void expectResult(const CodexClientResult& expected) {
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front(), expected);
    EXPECT_TRUE(child().isTerminated());
    EXPECT_TRUE(child().isInputClosed());
    EXPECT_EQ(time.pendingCount(), 0U) << "nothing may wait any more";
  }
  // Both edges of a deadline that now begins.
  void expectDeadline(Seconds deadline) {
    time.advance(deadline - moment);
    EXPECT_THAT(results, IsEmpty());
    time.advance(moment);
    expectResult(Failure{late});
    time.advance(Seconds{1000});
    EXPECT_EQ(results.size(), 1U);
  }

  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  std::unique_ptr<test::VirtualQueue> main = time.makeQueue();
  ScriptedLauncher launcher{*queue};
  std::shared_ptr<CodexAppServerClient> client;
  std::vector<CodexClientResult> results;
  std::vector<std::string> urls;
  std::vector<std::int32_t> ids;
};

TEST_F(CodexAppServerClientTest, StartsNothingByItself) {
  make();
  time.advance(Seconds{1000});
  EXPECT_THAT(launcher.started(), IsEmpty());
  EXPECT_THAT(results, IsEmpty());
}

TEST_F(CodexAppServerClientTest, StartsTheAppServerInItsOwnFolder) {
  make();
  client->start();
  EXPECT_THAT(launcher.started(), IsEmpty()) << "start() only posts";
  time.runPosted();
  ASSERT_EQ(launcher.started().size(), 1U);
  EXPECT_EQ(child().options().executable, "/usr/local/bin/codex");
  EXPECT_THAT(child().options().arguments, ElementsAre("app-server", "--stdio"));
  EXPECT_TRUE(child().options().environmentChanges.empty());
  EXPECT_EQ(child().options().workingDirectory, "/home/user/.config/Vantora");
  EXPECT_THAT(ids, ElementsAre(child().id()));
}

TEST_F(CodexAppServerClientTest, StartsOnlyOnce) {
  start();
  client->start();
  time.runPosted();
  EXPECT_EQ(launcher.started().size(), 1U);
}

TEST_F(CodexAppServerClientTest, ReadsTheLimits) {
  start();
  EXPECT_THAT(child().takeInputLines(), ElementsAre(HasSubstr("\"initialize\"")));
  say(initialized);
  EXPECT_THAT(child().takeInputLines(),
              ElementsAre(HasSubstr("\"initialized\""), HasSubstr("\"account/read\"")));
  say(account);
  EXPECT_THAT(child().takeInputLines(), ElementsAre(HasSubstr("\"account/rateLimits/read\"")));
  EXPECT_THAT(results, IsEmpty());
  say(limits);
  expectResult(Quota{R"({"rateLimits":{}})"});
}

TEST_F(CodexAppServerClientTest, LogsInFirstInLoginMode) {
  start(CodexClientMode::login);
  say(initialized);
  EXPECT_THAT(urls, IsEmpty());
  say(loginStarted);
  EXPECT_THAT(urls, ElementsAre("https://chatgpt.com/login"));
  say(loginCompleted);
  say(account);
  say(limits);
  expectResult(Quota{R"({"rateLimits":{}})"});
  EXPECT_EQ(urls.size(), 1U);
}

TEST_F(CodexAppServerClientTest, TakesTwoAnswersOfOneReadInOrder) {
  start();
  say(std::string(initialized) + account);
  EXPECT_THAT(results, IsEmpty());
  say(limits);
  expectResult(Quota{R"({"rateLimits":{}})"});
}

TEST_F(CodexAppServerClientTest, TakesAnAnswerThatIsSplitOverTwoReads) {
  start();
  say("{\"id\":1,\"res");
  (void)child().takeInputLines();
  say("ult\":{}}");
  EXPECT_THAT(child().takeInputLines(), IsEmpty());
  say("\n");
  EXPECT_EQ(child().takeInputLines().size(), 2U);
}

TEST_F(CodexAppServerClientTest, LooksAtNothingAfterTheResult) {
  start();
  say(std::string("nonsense\n") + initialized);
  expectResult(Failure{invalid});
  EXPECT_EQ(child().takeInputLines().size(), 1U);
}

TEST_F(CodexAppServerClientTest, GivesTheIntroductionTenSeconds) {
  start();
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, GivesTheAccountTenSecondsFromItsRequest) {
  start();
  time.advance(Seconds{9});
  say(initialized);
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, GivesTheLimitsTwentySecondsFromTheirRequest) {
  start();
  say(initialized);
  time.advance(Seconds{9});
  say(account);
  expectDeadline(Seconds{20});
}

TEST_F(CodexAppServerClientTest, GivesTheLoginsStartTenSeconds) {
  start(CodexClientMode::login);
  time.advance(Seconds{9});
  say(initialized);
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, GivesTheUserThreeHundredSeconds) {
  start(CodexClientMode::login);
  say(initialized);
  time.advance(Seconds{9});
  say(loginStarted);
  expectDeadline(Seconds{300});
}

TEST_F(CodexAppServerClientTest, KeepsTheUsersDeadlineWhileAnotherLoginEnds) {
  start(CodexClientMode::login);
  say(initialized);
  say(loginStarted);
  time.advance(Seconds{200});
  say("{\"method\":\"account/login/"
      "completed\",\"params\":{\"loginId\":\"L2\",\"success\":true}}\n");
  say("{\"id\":77,\"result\":{}}\n");
  expectDeadline(Seconds{100});
}

TEST_F(CodexAppServerClientTest, GivesTheAccountTenSecondsAfterTheLogin) {
  start(CodexClientMode::login);
  say(initialized);
  say(loginStarted);
  time.advance(Seconds{299});
  say(loginCompleted);
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, LeavesTheDeadlineAloneOnNotifications) {
  start();
  time.advance(Seconds{4});
  say("{\"method\":\"remoteControl/status/changed\",\"params\":{}}\n");
  expectDeadline(Seconds{6});
}

TEST_F(CodexAppServerClientTest, TellsThatItCouldNotStart) {
  launcher.failStarts(Fault::absent());
  start();
  EXPECT_THAT(results, ElementsAre(CodexClientResult(Failure{couldNotStart})));
  EXPECT_THAT(ids, IsEmpty());
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(CodexAppServerClientTest, TellsThatTheInputWasClosedBeforeTheFirstRequest) {
  launcher.onStart = [](ScriptedProcess& process) { process.closeInput(); };
  start();
  expectResult(Failure{inputClosed});
  EXPECT_THAT(ids, ElementsAre(child().id()));
}

TEST_F(CodexAppServerClientTest, TellsThatTheInputWasClosedBeforeALaterRequest) {
  start();
  child().closeInput();
  say(initialized);
  expectResult(Failure{inputClosed});
}

TEST_F(CodexAppServerClientTest, TellsThatTheInputWasClosedBeforeARequestWentThrough) {
  start();
  child().loseInput();
  time.runPosted();
  expectResult(Failure{inputClosed});
}

TEST_F(CodexAppServerClientTest, TellsTheEndOfTheOutput) {
  start();
  say("{\"id\":1,\"result\":{}}");  // never a line
  child().endOutput();
  time.runPosted();
  expectResult(Failure{outputClosed});
}

TEST_F(CodexAppServerClientTest, TellsTheEndOfTheProcessAtOnce) {
  start();
  child().exit({1, 0});
  time.runPosted();
  expectResult(Failure{ended});
}

TEST_F(CodexAppServerClientTest, TellsWhicheverEndComesFirst) {
  start();
  child().endOutput();
  child().exit();
  time.runPosted();
  expectResult(Failure{outputClosed});
}

TEST_F(CodexAppServerClientTest, KeepsAnAnswerThatCameBeforeTheEnd) {
  start();
  say(initialized);
  say(account);
  child().output(limits);
  child().endOutput();
  child().exit();
  time.runPosted();
  expectResult(Quota{R"({"rateLimits":{}})"});
}

TEST_F(CodexAppServerClientTest, DropsErrorOutput) {
  start();
  child().errorOutput(std::string(2'000'000, 'e'));
  time.runPosted();
  EXPECT_THAT(results, IsEmpty());
}

TEST_F(CodexAppServerClientTest, AcceptsAMillionBytesThatWait) {
  start();
  say(std::string(1'000'000, ' '));
  EXPECT_THAT(results, IsEmpty());
  say(" ");
  expectResult(Failure{overLimit});
}

TEST_F(CodexAppServerClientTest, RefusesAMillionAndOneBytesAtOnceWhateverTheyAre) {
  start();
  // The limit counts before any line is taken out of what came.
  say(initialized + std::string(1'000'001 - std::string(initialized).size(), ' '));
  expectResult(Failure{overLimit});
}

TEST_F(CodexAppServerClientTest, TakesALineOfExactlyTheLimit) {
  start();
  std::string line = initialized;
  line.insert(1, std::string(1'000'000 - line.size(), ' '));
  say(line);
  EXPECT_THAT(results, IsEmpty());
  EXPECT_EQ(child().takeInputLines().size(), 3U);
}

TEST_F(CodexAppServerClientTest, RefusesAnEmptyLine) {
  start();
  say("\n");
  expectResult(Failure{invalid});
}

TEST_F(CodexAppServerClientTest, CanBeCancelledInEveryStage) {
  for (int stage = 0; stage < 5; ++stage) {
    results.clear();
    start(stage < 3 ? CodexClientMode::read : CodexClientMode::login);
    if (stage != 0) {
      say(initialized);
    }
    if (stage == 2) {
      say(account);
    }
    if (stage == 4) {
      say(loginStarted);
    }
    client->cancel();
    EXPECT_THAT(results, IsEmpty());
    time.runPosted();
    expectResult(Cancelled{});
  }
}

TEST_F(CodexAppServerClientTest, StartsNothingOnceItWasCancelled) {
  make();
  client->cancel();
  client->start();
  time.advance(Seconds{1000});
  EXPECT_THAT(launcher.started(), IsEmpty());
  EXPECT_THAT(results, ElementsAre(CodexClientResult(Cancelled{})));
}

TEST_F(CodexAppServerClientTest, DeliversNothingMoreWhenCancelledAfterTheResult) {
  start();
  child().exit();
  time.runPosted();
  client->cancel();
  client->cancel();
  time.advance(Seconds{1000});
  expectResult(Failure{ended});
}

TEST_F(CodexAppServerClientTest, TellsTheFirstOfTwoResultsThatWereDecidedTogether) {
  start();
  child().output("nonsense\n");
  client->cancel();
  time.runPosted();
  expectResult(Failure{invalid});
}

TEST_F(CodexAppServerClientTest, EndsTheChildAndIsSilentWhenItIsDropped) {
  start();
  say(initialized);
  child().output(account);
  client.reset();
  time.advance(Seconds{1000});
  EXPECT_TRUE(child().isTerminated());
  EXPECT_THAT(results, IsEmpty());
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(CodexAppServerClientTest, StartsNothingWhenItIsDroppedAtOnce) {
  make();
  client->start();
  client.reset();
  time.advance(Seconds{1000});
  EXPECT_THAT(launcher.started(), IsEmpty());
}

TEST_F(CodexAppServerClientTest, MayBeDroppedByItsOwnCompletion) {
  client = std::make_shared<CodexAppServerClient>(ConversationHost{*queue, *main, launcher, ""},
                                                  "/codex", CodexClientMode::read, nullptr, nullptr,
                                                  [this](CodexClientResult result) {
                                                    results.push_back(std::move(result));
                                                    client.reset();
                                                  });
  client->start();
  time.runPosted();
  say("nonsense\n");
  expectResult(Failure{invalid});
}

TEST_F(CodexAppServerClientTest, LogsInWithoutAnybodyToTellThePage) {
  client = std::make_shared<CodexAppServerClient>(
      ConversationHost{*queue, *main, launcher, ""}, "/codex", CodexClientMode::login, nullptr,
      nullptr, [this](CodexClientResult result) { results.push_back(std::move(result)); });
  client->start();
  time.runPosted();
  say(initialized);
  say(loginStarted);
  say("{\"method\":\"account/login/completed\",\"params\":{\"loginId\":\"L1\"}}\n");
  expectResult(NeedsAuthentication{});
}

TEST_F(CodexAppServerClientTest, GivesNoLeewayToADeadline) {
  start();
  EXPECT_EQ(queue->lastLeeway(), Seconds{0});
}

}  // namespace
}  // namespace vantora
