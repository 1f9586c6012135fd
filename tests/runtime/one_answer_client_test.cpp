// SPDX-License-Identifier: MIT
//
// A client whose conversations live on a thread of their own, as on platforms whose main
// loop is not libuv's.
#include "runtime/one_answer_client.hpp"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/real_processes.hpp"

namespace vantora {
namespace {

using test::helperOptions;
using test::ProcessCensus;
using test::RealProcesses;

class Asker {
 public:
  virtual ~Asker() = default;
  virtual void start() = 0;
  virtual void cancel() = 0;
};

// Its answer is the child's first line.
class FirstLineClient final : public OneAnswerClient<Asker, std::string> {
 public:
  FirstLineClient(ConversationHost host, std::string scenario, ProcessStarted onProcessStarted,
                  Completion completion)
      : OneAnswerClient(std::move(host), std::move(onProcessStarted), std::move(completion)),
        scenario_(std::move(scenario)) {}

 private:
  void launch() override {
    LineConversation::Events events;
    events.onLine = guarded([this](std::string_view line) { finish(std::string(line)); });
    events.onExit = guarded([this] { finish("(exit)"); });
    if (!startChild(helperOptions(scenario_), std::move(events))) {
      finish("(no start)");
    }
    (void)conversation().send("hello");
    setDeadline(Seconds{60}, [this] { finish("(late)"); });
  }
  [[nodiscard]] std::string cancelledAnswer() const override { return "(cancelled)"; }

  std::string scenario_;
};

// Sanitizers start a thread of their own with the first one of ours, and keep it.
ProcessCensus takeCensusAfterAFirstThread() {
  std::thread([] {}).join();
  return ProcessCensus::take();
}

class OneAnswerClientTest : public testing::Test {
 protected:
  OneAnswerClientTest() {
    runOnThread([this] {
      launcher = std::make_unique<UvChildProcessLauncher>(thread->loop(), thread->queue());
    });
  }
  ~OneAnswerClientTest() override {
    runOnThread([this] { launcher.reset(); });
    thread.reset();
    mainLoop.runUntilBackTo(before);
  }

  void runOnThread(const std::function<void()>& body) {
    std::promise<void> done;
    thread->queue().post([&] {
      body();
      done.set_value();
    });
    done.get_future().wait();
  }
  std::shared_ptr<FirstLineClient> makeClient(const std::string& scenario) {
    return std::make_shared<FirstLineClient>(
        ConversationHost{thread->queue(), mainLoop.queue(), *launcher, ""}, scenario,
        [this](std::int32_t) {
          ++starts;
          EXPECT_EQ(std::this_thread::get_id(), mainThread);
        },
        [this](std::string answer) {
          answers.push_back(std::move(answer));
          EXPECT_EQ(std::this_thread::get_id(), mainThread);
        });
  }

  std::thread::id mainThread = std::this_thread::get_id();
  RealProcesses mainLoop;
  ProcessCensus before = takeCensusAfterAFirstThread();
  std::unique_ptr<UvQueueThread> thread = std::make_unique<UvQueueThread>("test");
  std::unique_ptr<UvChildProcessLauncher> launcher;
  int starts = 0;
  std::vector<std::string> answers;
};

TEST_F(OneAnswerClientTest, TellsItsAnswerOnTheMainThread) {
  const auto client = makeClient("echo");
  client->start();
  mainLoop.runUntil([this] { return !answers.empty(); });
  EXPECT_EQ(answers, std::vector<std::string>{"hello"});
  EXPECT_EQ(starts, 1);
}

TEST_F(OneAnswerClientTest, TellsOneOfTheAnswersThatMeet) {
  for (int round = 0; round < 20; ++round) {
    answers.clear();
    const auto client = makeClient(round % 2 == 0 ? "echo" : "close-output");
    client->start();
    client->cancel();
    client->cancel();
    mainLoop.runUntil([this] { return !answers.empty(); });
    mainLoop.runReady();
    EXPECT_EQ(answers.size(), 1U);
  }
}

TEST_F(OneAnswerClientTest, MayBeDroppedInTheMiddleOfAnything) {
  for (int round = 0; round < 50; ++round) {
    auto client = makeClient(round % 2 == 0 ? "flood" : "echo");
    client->start();
    if (round % 3 == 0) {
      mainLoop.runUntil([this, count = starts] { return starts > count; });
    }
    client.reset();
  }
  mainLoop.runReady();
}

TEST_F(OneAnswerClientTest, LeavesTheThreadBehindWhenItIsDroppedWithItsHost) {
  auto client = makeClient("echo");
  client->start();
  runOnThread([] {});
  client.reset();
  runOnThread([] {});
}

}  // namespace
}  // namespace vantora
