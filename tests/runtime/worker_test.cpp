// SPDX-License-Identifier: MIT
#include "runtime/worker.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "support/no_threads.hpp"
#include "support/real_processes.hpp"

namespace vantora {
namespace {

class ThreadWorkerTest : public testing::Test {
 protected:
  test::RealProcesses loop_;
  std::optional<ThreadWorker> worker_{std::in_place, loop_.queue()};
};

TEST_F(ThreadWorkerTest, WorksInOrderOnAnotherThreadAndReportsOnTheQueuesThread) {
  const auto main = std::this_thread::get_id();
  std::string order;
  std::string reports;
  for (const char name : {'a', 'b', 'c'}) {
    worker_->run(
        [&, name] {
          order += name;
          EXPECT_NE(std::this_thread::get_id(), main);
        },
        [&, name] {
          reports += name;
          EXPECT_EQ(std::this_thread::get_id(), main);
        });
  }
  EXPECT_EQ(reports, "");
  loop_.runUntil([&] { return reports.size() == 3; });
  EXPECT_EQ(order, "abc");
  EXPECT_EQ(reports, "abc");
}

TEST_F(ThreadWorkerTest, HoldsUpNoQueueWhileTheWorkHangs) {
  std::promise<void> answer;
  bool isDone = false;
  worker_->run([future = answer.get_future().share()] { future.wait(); }, [&] { isDone = true; });
  bool hasRun = false;
  loop_.queue().post([&] { hasRun = true; });
  loop_.runUntil([&] { return hasRun; });
  EXPECT_FALSE(isDone);
  answer.set_value();
  loop_.runUntil([&] { return isDone; });
}

TEST_F(ThreadWorkerTest, KeepsNoThreadWithoutWork) {
  // ThreadSanitizer starts a thread of its own with the program's first.
  std::thread([] {}).join();
  const auto before = test::ProcessCensus::take();
  for (int round = 0; round < 3; ++round) {
    bool isDone = false;
    worker_->run([] {}, [&] { isDone = true; });
    loop_.runUntil([&] { return isDone; });
    loop_.runUntilBackTo(before);
  }
}

TEST_F(ThreadWorkerTest, WorksInsideTheCallWhereTheSystemHasNoThread) {
  const test::NoThreads none;
  std::thread::id seen;
  bool isDone = false;
  worker_->run([&] { seen = std::this_thread::get_id(); }, [&] { isDone = true; });
  EXPECT_EQ(seen, std::this_thread::get_id());
  EXPECT_FALSE(isDone);
  loop_.runUntil([&] { return isDone; });
}

TEST_F(ThreadWorkerTest, FinishesWhatItWasGivenBeforeItEnds) {
  int count = 0;
  for (int round = 0; round < 100; ++round) {
    worker_->run([&] { ++count; }, [] {});
  }
  worker_.reset();
  EXPECT_EQ(count, 100);
}

TEST_F(ThreadWorkerTest, SaysWhetherItsWorkHasEnded) {
  using Clock = std::chrono::steady_clock;
  int count = 0;
  worker_->run([&] { ++count; }, [] {});
  EXPECT_TRUE(worker_->endBy(Clock::now() + std::chrono::minutes{1}));
  EXPECT_EQ(count, 1);
  worker_.emplace(loop_.queue(), Seconds{60});
  EXPECT_TRUE(worker_->endBy(Clock::now())) << "there was none";
  // Its own limit no longer counts: the last line would take a minute.
  worker_.emplace(loop_.queue(), Seconds{60});
  const auto answer = std::make_shared<std::promise<void>>();
  worker_->run([answer] { answer->get_future().wait(); }, [] {});
  EXPECT_FALSE(worker_->endBy(Clock::now()));
  worker_.reset();
  answer->set_value();
}

TEST_F(ThreadWorkerTest, LeavesHangingWorkBehindAndHearsNoMoreOfIt) {
  worker_.emplace(loop_.queue(), Seconds{0.01});
  const auto answer = std::make_shared<std::promise<void>>();
  const auto ended = std::make_shared<std::promise<void>>();
  const auto left = ended->get_future();
  bool hasReported = false;
  bool hasBegun = false;
  worker_->run([answer] { answer->get_future().wait(); },
               [&hasReported, guard = std::shared_ptr<int>(new int, [ended](const int* number) {
                                delete number;
                                ended->set_value();
                              })] { hasReported = true; });
  worker_->run([&] { hasBegun = true; }, [] {});
  worker_.reset();
  answer->set_value();
  left.wait();  // The thread has let go of the report.
  loop_.runReady();
  EXPECT_FALSE(hasReported);
  EXPECT_FALSE(hasBegun);
}

}  // namespace
}  // namespace vantora
