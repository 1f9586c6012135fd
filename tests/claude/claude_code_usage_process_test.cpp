// SPDX-License-Identifier: MIT
//
// The client with real children: each ends with one result, and nothing is left.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "claude/claude_code_usage_client.hpp"
#include "support/real_processes.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using claude_result::Failure;
using claude_result::NeedsAuthentication;
using claude_result::Usage;
using test::hasClosedItsInput;
using test::HelperFolder;
using test::isIgnoringTermination;
using test::isRunning;
using test::ProcessCensus;
using test::RealProcesses;
using test::VirtualTime;

constexpr const char* initialized =
    R"({"type":"control_response","response":{"request_id":"vantora-initialize","subtype":"success","response":{}}})";
constexpr const char* usage =
    R"({"type":"control_response","response":{"request_id":"vantora-usage","subtype":"success","response":{"rate_limits":null}}})";

class ClaudeCodeUsageProcessTest : public testing::Test {
 protected:
  void start(const std::string& scenario, const std::vector<std::string>& arguments = {}) {
    startExecutable(folder.makeHelperScript(scenario, arguments));
  }
  // After both questions, so that neither is refused.
  void startAfterQuestions(std::vector<std::string> scenario) {
    scenario.insert(scenario.begin(), "2");
    start("after-lines", scenario);
  }
  void startExecutable(const std::string& executable) {
    client = std::make_shared<ClaudeCodeUsageClient>(
        ConversationHost{*timers, *timers, processes.launcher(), folder.path() + "/Vantora"},
        executable, ClaudeCodeUsageClient::usualTimeout, [this](std::int32_t id) { child = id; },
        [this](ClaudeClientResult result) { results.push_back(std::move(result)); });
    client->start();
    time.runPosted();
  }
  // Lets the child live until a result came, or until only a grace is awaited.
  void runUntilResultOrGrace() {
    processes.runUntil([this] {
      time.runPosted();
      return !results.empty() || time.untilNext() <= ClaudeCodeUsageClient::endGrace;
    });
  }
  void expectResult(const ClaudeClientResult& expected) {
    runUntilResultOrGrace();
    if (results.empty()) {
      processes.runReady();  // what was written before the end is there
      time.advance(ClaudeCodeUsageClient::endGrace);
    }
    client.reset();
    time.advance(UvChildProcessLauncher::terminationGrace);
    processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
    time.advance(Seconds{1000});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front(), expected);
    EXPECT_EQ(time.pendingCount(), 0U);
  }

  HelperFolder folder;
  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> timers = time.makeQueue();
  RealProcesses processes{timers.get()};
  ProcessCensus before = ProcessCensus::take();
  std::shared_ptr<ClaudeCodeUsageClient> client;
  std::vector<ClaudeClientResult> results;
  std::int32_t child = 0;
};

TEST_F(ClaudeCodeUsageProcessTest, ReadsTheUsage) {
  start("answer", {initialized, usage});
  expectResult(Usage{R"({"rate_limits":null})"});
}

TEST_F(ClaudeCodeUsageProcessTest, ReadsTheUsageOfAChildThatEndsWithIt) {
  start("answer-and-exit", {initialized, usage});
  expectResult(Usage{R"({"rate_limits":null})"});
}

TEST_F(ClaudeCodeUsageProcessTest, TellsThatThereIsNoSuchExecutable) {
  startExecutable("/nowhere/claude");
  expectResult(Failure{"Não foi possível iniciar o executável claude."});
  EXPECT_EQ(child, 0);
}

TEST_F(ClaudeCodeUsageProcessTest, WaitsForASilentChildUntilTheDeadline) {
  start("silent");
  time.advance(Seconds{45} - Seconds{0.001});
  processes.runReady();
  EXPECT_TRUE(results.empty());
  time.advance(Seconds{0.001});
  expectResult(Failure{"Tempo limite do Claude Code excedido."});
}

TEST_F(ClaudeCodeUsageProcessTest, FindsALoginProblemOfAChildThatEnds) {
  startAfterQuestions({"complain", "Invalid API key · Please run /login"});
  expectResult(NeedsAuthentication{});
}

TEST_F(ClaudeCodeUsageProcessTest, TellsThatTheChildDiedOfASignal) {
  startAfterQuestions({"die"});
  // Its output ends with it, which is noticed first.
  expectResult(Failure{"O Claude Code fechou a saída antes de responder."});
}

TEST_F(ClaudeCodeUsageProcessTest, TellsThatTheChildEndedThoughAGrandchildKeepsItsPipesOpen) {
  const std::string file = folder.path() + "/grandchild";
  startAfterQuestions({"leave-a-quiet-grandchild", file});
  expectResult(Failure{"O Claude Code encerrou antes de responder."});
  int grandchild = 0;
  std::ifstream(file) >> grandchild;
  ASSERT_GT(grandchild, 0);
  processes.runUntil([grandchild] { return !isRunning(grandchild); });
}

TEST_F(ClaudeCodeUsageProcessTest, ReadsPastAHugeErrorOutput) {
  start("huge-error", {initialized, usage});
  expectResult(Usage{R"({"rate_limits":null})"});
}

TEST_F(ClaudeCodeUsageProcessTest, StopsAFloodOfOutput) {
  startAfterQuestions({"flood"});
  expectResult(Failure{"Resposta do Claude Code acima do limite."});
}

TEST_F(ClaudeCodeUsageProcessTest, ReadsTheUsageOfAChildThatClosedItsInputEarly) {
  // It reads the first question only; both were accepted before.
  start("answer-and-close-input", {usage});
  expectResult(Usage{R"({"rate_limits":null})"});
}

TEST_F(ClaudeCodeUsageProcessTest, WaitsForAChildThatClosedItsInputUntilTheDeadline) {
  start("after-lines", {"1", "close-input"});
  processes.runUntil([this] { return hasClosedItsInput(child); });
  processes.runReady();
  time.advance(Seconds{45} - Seconds{0.001});
  EXPECT_TRUE(results.empty());
  time.advance(Seconds{0.001});
  expectResult(Failure{"Tempo limite do Claude Code excedido."});
}

TEST_F(ClaudeCodeUsageProcessTest, TellsThatTheOutputWasClosed) {
  startAfterQuestions({"close-output"});
  expectResult(Failure{"O Claude Code fechou a saída antes de responder."});
}

TEST_F(ClaudeCodeUsageProcessTest, IsNotHeldUpByAChildThatIgnoresTermination) {
  startAfterQuestions({"ignore-termination"});
  processes.runUntil([this] { return isIgnoringTermination(child); });
  client->cancel();
  time.runPosted();
  ASSERT_EQ(results.size(), 1U);
  const int stubborn = child;
  EXPECT_TRUE(isRunning(stubborn));
  // The next query does not wait for it.
  client.reset();
  results.clear();
  start("answer", {initialized, usage});
  expectResult(Usage{R"({"rate_limits":null})"});
  EXPECT_FALSE(isRunning(stubborn));
}

TEST_F(ClaudeCodeUsageProcessTest, EndsTheChildWhenItIsCancelled) {
  start("silent");
  client->cancel();
  expectResult(claude_result::Cancelled{});
  EXPECT_FALSE(isRunning(child));
}

TEST_F(ClaudeCodeUsageProcessTest, EndsTheChildWhenItIsDropped) {
  start("silent");
  client.reset();
  time.runPosted();
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  EXPECT_FALSE(isRunning(child));
  EXPECT_TRUE(results.empty());
}

}  // namespace
}  // namespace vantora
