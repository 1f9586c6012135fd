// SPDX-License-Identifier: MIT
//
// The client with a scripted Claude Code, under virtual time.
#include "claude/claude_code_usage_client.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "claude/claude_control.hpp"
#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using claude_result::Cancelled;
using claude_result::Failure;
using claude_result::NeedsAuthentication;
using claude_result::UnsupportedVersion;
using claude_result::Usage;
using test::ScriptedLauncher;
using test::ScriptedProcess;
using test::VirtualTime;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Seconds moment{0.001};
constexpr const char* usage =
    "{\"type\":\"control_response\",\"response\":{\"request_id\":\"vantora-usage\","
    "\"subtype\":\"success\",\"response\":{\"a\":1}}}\n";
constexpr const char* unknown =
    "{\"type\":\"control_response\",\"response\":{\"request_id\":\"vantora-usage\","
    "\"subtype\":\"error\",\"error\":\"Unknown request\"}}\n";
constexpr const char* initializeFailed =
    "{\"type\":\"control_response\",\"response\":{\"request_id\":\"vantora-initialize\","
    "\"subtype\":\"error\",\"error\":\"login\"}}\n";

constexpr const char* couldNotStart = "Não foi possível iniciar o executável claude.";
constexpr const char* late = "Tempo limite do Claude Code excedido.";
constexpr const char* inputClosed = "O Claude Code não aceitou a consulta.";
constexpr const char* outputClosed = "O Claude Code fechou a saída antes de responder.";
constexpr const char* ended = "O Claude Code encerrou antes de responder.";
constexpr const char* overLimit = "Resposta do Claude Code acima do limite.";

class ClaudeCodeUsageClientTest : public testing::Test {
 protected:
  void make(Seconds timeout = ClaudeCodeUsageClient::usualTimeout) {
    client = std::make_shared<ClaudeCodeUsageClient>(
        ConversationHost{*queue, *main, launcher, "/home/user/.config/Vantora"},
        "/usr/local/bin/claude", timeout, [this](std::int32_t id) { ids.push_back(id); },
        [this](ClaudeClientResult result) { results.push_back(std::move(result)); });
  }
  void start(Seconds timeout = ClaudeCodeUsageClient::usualTimeout) {
    make(timeout);
    client->start();
    time.runPosted();
  }
  ScriptedProcess& child() { return launcher.latest(); }
  void say(std::string bytes) {
    child().output(std::move(bytes));
    time.runPosted();
  }
  void complain(std::string bytes) {
    child().errorOutput(std::move(bytes));
    time.runPosted();
  }
  void end() {
    child().exit({1, 0});
    time.runPosted();
  }
  void expectResult(const ClaudeClientResult& expected) {
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front(), expected);
    EXPECT_TRUE(child().isTerminated());
    EXPECT_TRUE(child().isInputClosed());
    EXPECT_EQ(time.pendingCount(), 0U) << "nothing may wait any more";
  }
  // Both edges of the grace that now begins.
  void expectAfterGrace(const ClaudeClientResult& expected) {
    time.advance(Seconds{0.3} - moment);
    EXPECT_THAT(results, IsEmpty());
    EXPECT_FALSE(child().isTerminated());
    time.advance(moment);
    expectResult(expected);
    time.advance(Seconds{1000});
    EXPECT_EQ(results.size(), 1U);
  }

  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  std::unique_ptr<test::VirtualQueue> main = time.makeQueue();
  ScriptedLauncher launcher{*queue};
  std::shared_ptr<ClaudeCodeUsageClient> client;
  std::vector<ClaudeClientResult> results;
  std::vector<std::int32_t> ids;
};

TEST_F(ClaudeCodeUsageClientTest, StartsNothingByItself) {
  make();
  time.advance(Seconds{1000});
  EXPECT_THAT(launcher.started(), IsEmpty());
  EXPECT_THAT(results, IsEmpty());
}

TEST_F(ClaudeCodeUsageClientTest, StartsClaudeCodeInItsOwnFolder) {
  make();
  client->start();
  EXPECT_THAT(launcher.started(), IsEmpty()) << "start() only posts";
  time.runPosted();
  ASSERT_EQ(launcher.started().size(), 1U);
  EXPECT_EQ(child().options().executable, "/usr/local/bin/claude");
  EXPECT_THAT(child().options().arguments, testing::ElementsAreArray(ClaudeControl::arguments));
  EXPECT_EQ(child().options().environmentChanges, ClaudeControl::environmentChanges());
  EXPECT_EQ(child().options().workingDirectory, "/home/user/.config/Vantora");
  EXPECT_THAT(ids, ElementsAre(child().id()));
}

TEST_F(ClaudeCodeUsageClientTest, AsksBothQuestionsAtOnce) {
  start();
  EXPECT_THAT(child().takeInputLines(), ElementsAre(ClaudeControl::initializeRequest().value(),
                                                    ClaudeControl::usageRequest().value()));
  EXPECT_TRUE(child().input().ends_with("}\n"));
  EXPECT_FALSE(child().isInputClosed());
}

TEST_F(ClaudeCodeUsageClientTest, HandsTheUsageOver) {
  start();
  say(usage);
  expectResult(Usage{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, LetsOnlyTheUsageAnswerDecide) {
  start();
  say(initializeFailed);
  say("{\"type\":\"system\"}\nnot json\n\n[]\n");
  EXPECT_THAT(results, IsEmpty());
  say(usage);
  expectResult(Usage{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, TakesTheFirstOfTwoAnswersOfOneRead) {
  start();
  say(std::string(unknown) + usage);
  expectResult(UnsupportedVersion{});
}

TEST_F(ClaudeCodeUsageClientTest, TakesAnAnswerThatIsSplitOverSeveralReads) {
  start();
  const std::string text = usage;
  say(text.substr(0, 10));
  say(text.substr(10, 40));
  say(text.substr(50, text.size() - 51));
  EXPECT_THAT(results, IsEmpty());
  say("\n");
  expectResult(Usage{R"({"a":1})"});
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
  start(Seconds{5});
  time.advance(Seconds{5} - moment);
  EXPECT_THAT(results, IsEmpty());
  time.advance(moment);
  expectResult(Failure{late});
}

TEST_F(ClaudeCodeUsageClientTest, TellsThatItCouldNotStart) {
  launcher.failStarts(Fault::failed("EACCES"));
  start();
  EXPECT_THAT(results, ElementsAre(ClaudeClientResult(Failure{couldNotStart})));
  EXPECT_THAT(ids, IsEmpty());
  EXPECT_EQ(time.pendingCount(), 0U);
  time.advance(Seconds{1000});
  EXPECT_EQ(results.size(), 1U);
}

TEST_F(ClaudeCodeUsageClientTest, TellsThatTheInputWasClosed) {
  launcher.onStart = [](ScriptedProcess& process) { process.closeInput(); };
  start();
  expectResult(Failure{inputClosed});
  EXPECT_THAT(ids, ElementsAre(child().id()));
}

TEST_F(ClaudeCodeUsageClientTest, TellsThatTheInputWasClosedBetweenTheQuestions) {
  launcher.onStart = [](ScriptedProcess& process) {
    process.onInput = [](ScriptedProcess& self, std::string_view) { self.closeInput(); };
  };
  start();
  expectResult(Failure{inputClosed});
}

TEST_F(ClaudeCodeUsageClientTest, TellsThatAQuestionDidNotGoThrough) {
  start();
  child().loseInput();
  time.runPosted();
  expectResult(Failure{inputClosed});
}

TEST_F(ClaudeCodeUsageClientTest, TellsTheEndOfTheOutputAfterAGrace) {
  start();
  child().endOutput();
  time.runPosted();
  expectAfterGrace(Failure{outputClosed});
}

TEST_F(ClaudeCodeUsageClientTest, TellsTheEndOfTheProcessAfterAGrace) {
  start();
  end();
  EXPECT_EQ(queue->lastLeeway(), Seconds{0});
  expectAfterGrace(Failure{ended});
}

TEST_F(ClaudeCodeUsageClientTest, TellsWhicheverEndCameFirst) {
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
  expectResult(Usage{R"({"a":1})"});
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

TEST_F(ClaudeCodeUsageClientTest, FindsALoginProblemThatIsToldWithinTheGrace) {
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
  expectResult(Usage{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, AcceptsAMillionBytesThatWait) {
  start();
  say(std::string(1'000'000, 'x'));
  EXPECT_THAT(results, IsEmpty());
  say("x");
  expectResult(Failure{overLimit});
}

TEST_F(ClaudeCodeUsageClientTest, RefusesAMillionAndOneBytesAtOnceWhateverTheyAre) {
  start();
  say(usage + std::string(1'000'001 - std::string(usage).size(), '\n'));
  expectResult(Failure{overLimit});
}

TEST_F(ClaudeCodeUsageClientTest, TakesAReadOfExactlyTheLimit) {
  start();
  say(usage + std::string(1'000'000 - std::string(usage).size(), '\n'));
  expectResult(Usage{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, CanBeCancelled) {
  start();
  client->cancel();
  EXPECT_THAT(results, IsEmpty());
  time.runPosted();
  expectResult(Cancelled{});
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

TEST_F(ClaudeCodeUsageClientTest, StartsNothingOnceItWasCancelled) {
  make();
  client->cancel();
  client->start();
  time.advance(Seconds{1000});
  EXPECT_THAT(launcher.started(), IsEmpty());
  EXPECT_THAT(results, ElementsAre(ClaudeClientResult(Cancelled{})));
}

TEST_F(ClaudeCodeUsageClientTest, DeliversNothingMoreWhenCancelledAfterTheResult) {
  start();
  say(usage);
  client->cancel();
  time.advance(Seconds{1000});
  expectResult(Usage{R"({"a":1})"});
}

TEST_F(ClaudeCodeUsageClientTest, EndsTheChildAndIsSilentWhenItIsDropped) {
  start();
  end();
  child().output(usage);
  client.reset();
  time.advance(Seconds{1000});
  EXPECT_TRUE(child().isTerminated());
  EXPECT_THAT(results, IsEmpty());
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(ClaudeCodeUsageClientTest, GivesNoLeewayToItsDeadline) {
  start();
  EXPECT_EQ(queue->lastLeeway(), Seconds{0});
}

}  // namespace
}  // namespace vantora
