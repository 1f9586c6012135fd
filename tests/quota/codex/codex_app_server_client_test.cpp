// SPDX-License-Identifier: MIT
//
// What the Codex client does differently: its stages with their deadlines, and the login. What
// both clients do is in tests/quota.
#include "quota/codex/codex_app_server_client.hpp"

#include <gmock/gmock.h>

#include "quota/client_fixture.hpp"

namespace vantora {
namespace {

using namespace quota_result;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* initializedLine = "{\"id\":1,\"result\":{}}\n";
constexpr const char* accountLine = "{\"id\":2,\"result\":{\"account\":{\"type\":\"chatgpt\"}}}\n";
constexpr const char* limitsLine = "{\"id\":3,\"result\":{\"rateLimits\":{}}}\n";
constexpr const char* loginStartedLine =
    "{\"id\":4,\"result\":{\"type\":\"chatgpt\",\"loginId\":\"L1\","
    "\"authUrl\":\"https://chatgpt.com/login\"}}\n";
constexpr const char* loginCompletedLine =
    "{\"method\":\"account/login/completed\",\"params\":{\"loginId\":\"L1\",\"success\":true}}\n";

constexpr const char* inputClosed = test::CodexClientCase::inputClosed;
constexpr const char* invalidAnswer = "Resposta inválida do App Server.";

class CodexAppServerClientTest : public test::QuotaClientFixture<test::CodexClientCase> {
 protected:
  void start(CodexClientMode mode = CodexClientMode::read) {
    client = std::make_shared<CodexAppServerClient>(
        host(), executable, mode, [this](std::string url) { urls.push_back(std::move(url)); },
        nullptr, [this](CodexClientResult result) { results.push_back(std::move(result)); });
    startMade();
  }
  /// Both edges of a deadline that now begins.
  void expectDeadline(Seconds deadline) {
    expectResultAfter(deadline, Failure{test::CodexClientCase::late});
  }

  std::vector<std::string> urls;
};

TEST_F(CodexAppServerClientTest, ReadsTheLimits) {
  start();
  EXPECT_THAT(child().takeInputLines(), ElementsAre(HasSubstr("\"initialize\"")));
  say(initializedLine);
  EXPECT_THAT(child().takeInputLines(),
              ElementsAre(HasSubstr("\"initialized\""), HasSubstr("\"account/read\"")));
  say(accountLine);
  EXPECT_THAT(child().takeInputLines(), ElementsAre(HasSubstr("\"account/rateLimits/read\"")));
  EXPECT_THAT(results, IsEmpty());
  say(limitsLine);
  expectResult(Answer{R"({"rateLimits":{}})"});
}

TEST_F(CodexAppServerClientTest, LogsInFirstInLoginMode) {
  start(CodexClientMode::login);
  say(initializedLine);
  EXPECT_THAT(urls, IsEmpty());
  say(loginStartedLine);
  EXPECT_THAT(urls, ElementsAre("https://chatgpt.com/login"));
  say(loginCompletedLine);
  say(accountLine);
  say(limitsLine);
  expectResult(Answer{R"({"rateLimits":{}})"});
  EXPECT_EQ(urls.size(), 1U);
}

TEST_F(CodexAppServerClientTest, TakesTwoAnswersOfOneReadInOrder) {
  start();
  say(std::string(initializedLine) + accountLine);
  EXPECT_THAT(results, IsEmpty());
  say(limitsLine);
  expectResult(Answer{R"({"rateLimits":{}})"});
}

TEST_F(CodexAppServerClientTest, LooksAtNothingAfterTheResult) {
  start();
  say(std::string("nonsense\n") + initializedLine);
  expectResult(Failure{invalidAnswer});
  EXPECT_EQ(child().takeInputLines().size(), 1U);
}

TEST_F(CodexAppServerClientTest, GivesTheAccountTenSecondsFromItsRequest) {
  start();
  time.advance(Seconds{9});
  say(initializedLine);
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, GivesTheLimitsTwentySecondsFromTheirRequest) {
  start();
  say(initializedLine);
  time.advance(Seconds{9});
  say(accountLine);
  expectDeadline(Seconds{20});
}

TEST_F(CodexAppServerClientTest, GivesTheLoginsStartTenSeconds) {
  start(CodexClientMode::login);
  time.advance(Seconds{9});
  say(initializedLine);
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, GivesTheUserThreeHundredSeconds) {
  start(CodexClientMode::login);
  say(initializedLine);
  time.advance(Seconds{9});
  say(loginStartedLine);
  expectDeadline(Seconds{300});
}

TEST_F(CodexAppServerClientTest, KeepsTheUsersDeadlineWhileAnotherLoginEnds) {
  start(CodexClientMode::login);
  say(initializedLine);
  say(loginStartedLine);
  time.advance(Seconds{200});
  say("{\"method\":\"account/login/"
      "completed\",\"params\":{\"loginId\":\"L2\",\"success\":true}}\n");
  say("{\"id\":77,\"result\":{}}\n");
  expectDeadline(Seconds{100});
}

TEST_F(CodexAppServerClientTest, GivesTheAccountTenSecondsAfterTheLogin) {
  start(CodexClientMode::login);
  say(initializedLine);
  say(loginStartedLine);
  time.advance(Seconds{299});
  say(loginCompletedLine);
  expectDeadline(Seconds{10});
}

TEST_F(CodexAppServerClientTest, LeavesTheDeadlineAloneOnNotifications) {
  start();
  time.advance(Seconds{4});
  say("{\"method\":\"remoteControl/status/changed\",\"params\":{}}\n");
  expectDeadline(Seconds{6});
}

TEST_F(CodexAppServerClientTest, FailsWhenTheInputWasClosedBeforeALaterRequest) {
  start();
  child().closeInput();
  say(initializedLine);
  expectResult(Failure{inputClosed});
}

TEST_F(CodexAppServerClientTest, TakesALineOfExactlyTheLimit) {
  start();
  std::string line = initializedLine;
  line.insert(1, std::string(1'000'000 - line.size(), ' '));
  say(line);
  EXPECT_THAT(results, IsEmpty());
  EXPECT_EQ(child().takeInputLines().size(), 3U);
}

TEST_F(CodexAppServerClientTest, RefusesAnEmptyLine) {
  start();
  say("\n");
  expectResult(Failure{invalidAnswer});
}

TEST_F(CodexAppServerClientTest, CanBeCancelledInEveryStage) {
  for (int stage = 0; stage < 5; ++stage) {
    results.clear();
    start(stage < 3 ? CodexClientMode::read : CodexClientMode::login);
    if (stage != 0) {
      say(initializedLine);
    }
    if (stage == 2) {
      say(accountLine);
    }
    if (stage == 4) {
      say(loginStartedLine);
    }
    client->cancel();
    EXPECT_THAT(results, IsEmpty());
    time.runPosted();
    expectResult(Cancelled{});
  }
}

TEST_F(CodexAppServerClientTest, LogsInWithoutACallbackForThePage) {
  client = std::make_shared<CodexAppServerClient>(
      host(), executable, CodexClientMode::login, nullptr, nullptr,
      [this](CodexClientResult result) { results.push_back(std::move(result)); });
  startMade();
  say(initializedLine);
  say(loginStartedLine);
  say("{\"method\":\"account/login/completed\",\"params\":{\"loginId\":\"L1\"}}\n");
  expectResult(NeedsAuthentication{});
}

}  // namespace
}  // namespace vantora
