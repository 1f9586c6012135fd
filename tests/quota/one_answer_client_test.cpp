// SPDX-License-Identifier: MIT
//
// The life of a client with real children, whatever it asks them.
#include "quota/one_answer_client.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "support/real_processes.hpp"

namespace vantora {
namespace {

using test::ProcessCensus;
using test::RealProcesses;

using FirstLineResult = std::variant<std::string, quota_result::Failure, quota_result::Cancelled>;

// Its answer is the child's first line.
class FirstLineClient final : public OneAnswerClient<FirstLineResult> {
 public:
  FirstLineClient(ConversationHost host, const AssistantExecutable& executable,
                  ProcessStarted onProcessStarted, Completion completion)
      : OneAnswerClient(std::move(host), executable, {{}, {}, "", "", "", ""},
                        std::move(onProcessStarted), std::move(completion)) {}

 private:
  void begin() override {
    (void)send("hello");
    setDeadline(Seconds{60});
  }
  void takeLine(std::string_view line) override { finish(std::string(line)); }
  void onOutputEnd() override {}
  void onExit() override { fail("(exit)"); }
};

class OneAnswerClientTest : public testing::Test {
 protected:
  ~OneAnswerClientTest() override { processes.runUntilBackTo(before); }

  std::shared_ptr<FirstLineClient> makeClient(const std::string& scenario) {
    const std::string path = folder.makeHelperScript(scenario);
    return std::make_shared<FirstLineClient>(
        ConversationHost{processes.queue(), processes.launcher(), ""},
        AssistantExecutable{path, path}, [this](std::int32_t) { ++starts; },
        [this](FirstLineResult answer) { answers.push_back(std::move(answer)); });
  }

  test::HelperFolder folder;
  RealProcesses processes;
  ProcessCensus before = ProcessCensus::take();
  int starts = 0;
  std::vector<FirstLineResult> answers;
};

TEST_F(OneAnswerClientTest, DeliversItsAnswer) {
  const auto client = makeClient("echo");
  client->start();
  processes.runUntil([this] { return !answers.empty(); });
  EXPECT_EQ(answers, std::vector<FirstLineResult>{"hello"});
  EXPECT_EQ(starts, 1);
}

TEST_F(OneAnswerClientTest, DeliversOneOfTwoAnswersThatCoincide) {
  for (int round = 0; round < 20; ++round) {
    answers.clear();
    const auto client = makeClient(round % 2 == 0 ? "echo" : "close-output");
    client->start();
    client->cancel();
    client->cancel();
    processes.runUntil([this] { return !answers.empty(); });
    processes.runReady();
    EXPECT_EQ(answers.size(), 1U);
  }
}

TEST_F(OneAnswerClientTest, MayBeDestroyedInTheMiddleOfAnything) {
  for (int round = 0; round < 50; ++round) {
    auto client = makeClient(round % 2 == 0 ? "flood" : "echo");
    client->start();
    if (round % 3 == 0) {
      processes.runUntil([this, count = starts] { return starts > count; });
    }
    client.reset();
  }
  processes.runReady();
}

TEST_F(OneAnswerClientTest, LeavesNothingWhenItIsDestroyedWithItsHost) {
  auto client = makeClient("echo");
  client->start();
  processes.runReady();
  client.reset();
  processes.destroyLauncher();
}

}  // namespace
}  // namespace vantora
