// SPDX-License-Identifier: MIT
//
// What the Claude client does differently: two questions at once, one deadline, and a grace for a
// login problem on standard error. What both clients do is in tests/quota.
#include "quota/claude/claude_code_usage_client.hpp"

#include <gmock/gmock.h>

#include "quota/client_fixture.hpp"

namespace vantora {
namespace {

using namespace quota_result;
using test::ScriptedProcess;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* usage =
    "{\"type\":\"control_response\",\"response\":{\"request_id\":\"vantora-usage\","
    "\"subtype\":\"success\",\"response\":{\"a\":1}}}\n";
constexpr const char* unknown =
    "{\"type\":\"control_response\",\"response\":{\"request_id\":\"vantora-usage\","
    "\"subtype\":\"error\",\"error\":\"Unknown request\"}}\n";
constexpr const char* initializeFailed =
    "{\"type\":\"control_response\",\"response\":{\"request_id\":\"vantora-initialize\","
    "\"subtype\":\"error\",\"error\":\"login\"}}\n";

constexpr const char* late = test::ClaudeClientCase::late;
constexpr const char* inputClosed = test::ClaudeClientCase::inputClosed;
constexpr const char* outputClosed = test::ClaudeClientCase::outputClosed;
constexpr const char* ended = test::ClaudeClientCase::exited;

class ClaudeCodeUsageClientTest : public test::QuotaClientFixture<test::ClaudeClientCase> {
 protected:
  /// Both edges of the grace that now begins.
  void expectAfterGrace(const ClaudeClientResult& expected) {
    expectResultAfter(Seconds{0.3}, expected);
  }
};

TEST_F(ClaudeCodeUsageClientTest, AsksBothQuestionsAtOnce) {
  start();
  EXPECT_THAT(child().takeInputLines(), ElementsAre(ClaudeControl::initializeRequest().value(),
                                                    ClaudeControl::usageRequest().value()));
  EXPECT_TRUE(child().input().ends_with("}\n"));
  EXPECT_FALSE(child().isInputClosed());
}

TEST_F(ClaudeCodeUsageClientTest, LetsOnlyTheUsageAnswerDecide) {
  start();
  say(initializeFailed);
  say("{\"type\":\"system\"}\nnot json\n\n[]\n");
  EXPECT_THAT(results, IsEmpty());
  say(usage);
  expectResult(Answer{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, TakesTheFirstOfTwoAnswersOfOneRead) {
  start();
  say(std::string(unknown) + usage);
  expectResult(UnsupportedVersion{});
}

TEST_F(ClaudeCodeUsageClientTest, NeverLooksAtALastLineWithoutALineFeed) {
  start();
  std::string text = usage;
  text.pop_back();
  say(text);
  child().endOutput();
  time.runPosted();
  expectAfterGrace(Failure{outputClosed});
}

TEST_F(ClaudeCodeUsageClientTest, GivesTheWholeExchangeFortyFiveSeconds) {
  start();
  time.advance(Seconds{20});
  say(initializeFailed);
  time.advance(Seconds{25} - moment);
  EXPECT_THAT(results, IsEmpty());
  time.advance(moment);
  expectResult(Failure{late});
  time.advance(Seconds{1000});
  EXPECT_EQ(results.size(), 1U);
}

TEST_F(ClaudeCodeUsageClientTest, TakesAnotherTimeout) {
  client = std::make_shared<ClaudeCodeUsageClient>(
      host(), executable, Seconds{5}, nullptr,
      [this](ClaudeClientResult result) { results.push_back(std::move(result)); });
  startMade();
  time.advance(Seconds{5} - moment);
  EXPECT_THAT(results, IsEmpty());
  time.advance(moment);
  expectResult(Failure{late});
}

TEST_F(ClaudeCodeUsageClientTest, FailsWhenTheInputWasClosedBetweenTheQuestions) {
  launcher.onStart = [](ScriptedProcess& process) {
    process.onInput = [](ScriptedProcess& self, std::string_view) { self.closeInput(); };
  };
  start();
  expectResult(Failure{inputClosed});
}

TEST_F(ClaudeCodeUsageClientTest, FailsWithTheEndThatCameFirst) {
  start();
  child().endOutput();
  time.runPosted();
  time.advance(Seconds{0.1});
  end();
  time.advance(Seconds{0.2} - moment);
  EXPECT_THAT(results, IsEmpty());
  time.advance(moment);
  expectResult(Failure{outputClosed});
}

TEST_F(ClaudeCodeUsageClientTest, TakesAnAnswerThatComesWithinTheGrace) {
  start();
  end();
  time.advance(Seconds{0.3} - moment);
  say(usage);
  expectResult(Answer{R"({"a":1})"});
  time.advance(Seconds{1000});
  EXPECT_EQ(results.size(), 1U);
}

TEST_F(ClaudeCodeUsageClientTest, LetsTheDeadlineWinWithinTheGrace) {
  start();
  time.advance(Seconds{44.8});
  end();
  time.advance(Seconds{0.2} - moment);
  EXPECT_THAT(results, IsEmpty());
  time.advance(moment);
  expectResult(Failure{late});
}

TEST_F(ClaudeCodeUsageClientTest, FindsALoginProblemOnStandardError) {
  for (const char* text : {"Please run /login\n", "You are NOT logged in", "Invalid API Key · x"}) {
    results.clear();
    start();
    complain(text);
    EXPECT_THAT(results, IsEmpty()) << "standard error alone decides nothing";
    end();
    expectAfterGrace(NeedsAuthentication{});
  }
}

TEST_F(ClaudeCodeUsageClientTest, FindsALoginProblemThatIsReportedWithinTheGrace) {
  start();
  child().endOutput();
  time.runPosted();
  time.advance(Seconds{0.2});
  complain("invalid api");
  complain(" key");
  time.advance(Seconds{0.1});
  expectResult(NeedsAuthentication{});
}

TEST_F(ClaudeCodeUsageClientTest, KeepsOnlyTheEndOfStandardError) {
  const std::string words = "/login";
  const auto resultWith = [&](std::size_t bytesAfter) {
    results.clear();
    start();
    complain("some noise " + words + std::string(bytesAfter, '.'));
    end();
    time.advance(Seconds{0.3});
    return results.at(0);
  };
  EXPECT_EQ(resultWith(4096 - words.size()), ClaudeClientResult(NeedsAuthentication{}));
  EXPECT_EQ(resultWith(4096 - words.size() + 1), ClaudeClientResult(Failure{ended}));
}

TEST_F(ClaudeCodeUsageClientTest, DecidesNothingForAHugeStandardError) {
  start();
  for (int count = 0; count < 100; ++count) {
    child().errorOutput(std::string(65'536, 'e'));
  }
  time.runPosted();
  EXPECT_THAT(results, IsEmpty());
  say(usage);
  expectResult(Answer{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, CanBeCancelledWithinTheGrace) {
  start();
  end();
  client->cancel();
  time.runPosted();
  expectResult(Cancelled{});
  time.advance(Seconds{1});
  EXPECT_EQ(results.size(), 1U);
}

}  // namespace
}  // namespace vantora
