// SPDX-License-Identifier: MIT
//
// The client with real children: each ends with one result, and nothing is left.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "codex/codex_app_server_client.hpp"
#include "support/real_processes.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using codex_result::Failure;
using codex_result::Quota;
using test::HelperFolder;
using test::isRunning;
using test::ProcessCensus;
using test::RealProcesses;
using test::VirtualTime;

class CodexAppServerProcessTest : public testing::Test {
 protected:
  // Starts the client with the helper in `scenario`.
  void start(const std::string& scenario, const std::vector<std::string>& arguments = {}) {
    startExecutable(folder.makeHelperScript(scenario, arguments));
  }
  void startExecutable(const std::string& executable) {
    client = std::make_shared<CodexAppServerClient>(
        ConversationHost{*timers, *timers, processes.launcher(), folder.path() + "/Vantora"},
        executable, CodexClientMode::read, nullptr, [this](std::int32_t id) { child = id; },
        [this](CodexClientResult result) { results.push_back(std::move(result)); });
    client->start();
    time.runPosted();
  }
  // Waits for the result, then drops the client and sees that nothing is left.
  void expectResult(const CodexClientResult& expected) {
    processes.runUntil([this] {
      time.runPosted();
      return !results.empty();
    });
    client.reset();
    time.advance(UvChildProcessLauncher::terminationGrace);
    processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
    time.advance(Seconds{1000});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front(), expected);
    EXPECT_EQ(time.pendingCount(), 0U);
  }
  void expectSilence(Seconds deadline) {
    time.advance(deadline - Seconds{0.001});
    processes.runReady();
    time.runPosted();
    EXPECT_TRUE(results.empty());
    time.advance(Seconds{0.001});
    expectResult(Failure{"Tempo limite do App Server excedido."});
  }

  HelperFolder folder;
  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> timers = time.makeQueue();
  RealProcesses processes{timers.get()};
  ProcessCensus before = ProcessCensus::take();
  std::shared_ptr<CodexAppServerClient> client;
  std::vector<CodexClientResult> results;
  std::int32_t child = 0;
};

TEST_F(CodexAppServerProcessTest, ReadsTheLimits) {
  start("answer", {R"({"method":"configWarning","params":{},"emittedAtMs":1})"
                   "\n"
                   R"({"result":{"userAgent":"codex"},"id":1})",
                   "", R"({"id":2,"result":{"account":{"type":"chatgpt"}}})",
                   R"({"id":3,"result":{"rateLimits":null}})"});
  expectResult(Quota{R"({"rateLimits":null})"});
}

TEST_F(CodexAppServerProcessTest, ReadsTheLimitsOfAChildThatEndsWithThem) {
  start("answer-and-exit",
        {R"({"id":1,"result":{}})", "", R"({"id":2,"result":{"account":{"type":"chatgpt"}}})",
         R"({"id":3,"result":{}})"});
  expectResult(Quota{"{}"});
}

TEST_F(CodexAppServerProcessTest, TellsThatThereIsNoSuchExecutable) {
  startExecutable("/nowhere/codex");
  expectResult(Failure{"Não foi possível iniciar o executável Codex selecionado."});
  EXPECT_EQ(child, 0);
}

TEST_F(CodexAppServerProcessTest, WaitsForASilentChildUntilTheDeadline) {
  start("silent");
  expectSilence(Seconds{10});
}

TEST_F(CodexAppServerProcessTest, TellsThatTheChildDiedOfASignal) {
  start("after-lines", {"1", "die"});
  // Its output ends with it, which is noticed first.
  expectResult(Failure{"O App Server fechou a saída."});
}

TEST_F(CodexAppServerProcessTest, TellsThatTheChildEndedThoughAGrandchildKeepsItsPipesOpen) {
  const std::string file = folder.path() + "/grandchild";
  start("after-lines", {"1", "leave-a-quiet-grandchild", file});
  expectResult(Failure{"O processo auxiliar encerrou antes de responder."});
  int grandchild = 0;
  std::ifstream(file) >> grandchild;
  ASSERT_GT(grandchild, 0);
  processes.runUntil([grandchild] { return !isRunning(grandchild); });
}

TEST_F(CodexAppServerProcessTest, DrainsAHugeErrorOutput) {
  start("huge-error");
  expectResult(Failure{"Resposta inválida do App Server."});  // "done", after four megabytes
}

TEST_F(CodexAppServerProcessTest, StopsAFloodOfOutput) {
  start("flood");
  expectResult(Failure{"Resposta do App Server acima do limite."});
}

TEST_F(CodexAppServerProcessTest, TellsThatTheInputWasClosedEarly) {
  start("answer-and-close-input", {R"({"id":1,"result":{}})"});
  expectResult(Failure{"O App Server fechou a entrada antes da consulta."});
}

TEST_F(CodexAppServerProcessTest, TellsThatTheOutputWasClosed) {
  start("close-output");
  expectResult(Failure{"O App Server fechou a saída."});
}

TEST_F(CodexAppServerProcessTest, IsNotHeldUpByAChildThatIgnoresTermination) {
  start("ignore-termination");  // it says "ready"
  processes.runUntil([this] {
    time.runPosted();
    return !results.empty();
  });
  const int stubborn = child;
  EXPECT_TRUE(isRunning(stubborn));
  // The next query does not wait for it.
  client.reset();
  results.clear();
  start("answer", {R"({"id":1,"result":{}})", "", R"({"id":2,"result":{}})"});
  expectResult(codex_result::NeedsAuthentication{});
  EXPECT_FALSE(isRunning(stubborn));
}

TEST_F(CodexAppServerProcessTest, EndsTheChildWhenItIsCancelled) {
  start("silent");
  client->cancel();
  expectResult(codex_result::Cancelled{});
  EXPECT_FALSE(isRunning(child));
}

TEST_F(CodexAppServerProcessTest, EndsTheChildWhenItIsDropped) {
  start("silent");
  client.reset();
  time.runPosted();
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  EXPECT_FALSE(isRunning(child));
  EXPECT_TRUE(results.empty());
}

TEST_F(CodexAppServerProcessTest, LeavesNothingAfterManyConversations) {
  for (int round = 0; round < 20; ++round) {
    results.clear();
    start(round % 2 == 0 ? "close-output" : "flood");
    processes.runUntil([this] {
      time.runPosted();
      return !results.empty();
    });
    client.reset();
  }
  time.runPosted();
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  EXPECT_EQ(time.pendingCount(), 0U);
}

}  // namespace
}  // namespace vantora
