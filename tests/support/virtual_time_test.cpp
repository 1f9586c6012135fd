// SPDX-License-Identifier: MIT
#include "support/virtual_time.hpp"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantora::test {
namespace {

TEST(VirtualTime, RunsTasksByDueTimeAndThenByInsertion) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  std::string order;
  const auto late = queue->runAfter(Seconds{2}, Seconds{0}, [&] { order += 'c'; });
  const auto first = queue->runAfter(Seconds{1}, Seconds{0}, [&] { order += 'a'; });
  const auto second = queue->runAfter(Seconds{1}, Seconds{0}, [&] { order += 'b'; });
  time.advance(Seconds{2});
  EXPECT_EQ(order, "abc");
}

TEST(VirtualTime, GivesEachTaskItsOwnDueTime) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  const Seconds start = time.uptime();
  std::vector<double> seen;
  const auto timer = queue->runEvery(Seconds{0.5}, Seconds{0},
                                     [&] { seen.push_back((time.uptime() - start).count()); });
  time.advance(Seconds{1.75});
  EXPECT_EQ(seen, (std::vector{0.5, 1.0, 1.5}));
}

TEST(VirtualTime, RunsATaskThatATaskSchedulesInsideTheWindow) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  int runs = 0;
  TimerHandle inner;
  const auto outer = queue->runAfter(Seconds{1}, Seconds{0}, [&] {
    inner = queue->runAfter(Seconds{1}, Seconds{0}, [&] { ++runs; });
  });
  time.advance(Seconds{1.999});
  EXPECT_EQ(runs, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(runs, 1);
}

TEST(VirtualTime, ForgetsATimerWhoseHandleIsGone) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  int runs = 0;
  auto timer = queue->runEvery(Seconds{1}, Seconds{0}, [&] { ++runs; });
  time.advance(Seconds{2});
  timer.reset();
  time.advance(Seconds{2});
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(VirtualTime, LetsATimerCancelItselfFromItsOwnTask) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  int runs = 0;
  TimerHandle timer;
  timer = queue->runEvery(Seconds{1}, Seconds{0}, [&] {
    ++runs;
    timer.reset();
  });
  time.advance(Seconds{5});
  EXPECT_EQ(runs, 1);
}

TEST(VirtualTime, JumpRunsNothingAndSkipsMissedInstantsOfARepeatingTimer) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  int runs = 0;
  const auto timer = queue->runEvery(Seconds{1}, Seconds{0}, [&] { ++runs; });
  time.jump(Seconds{10.5});
  EXPECT_EQ(runs, 0);
  time.runPosted();
  EXPECT_EQ(runs, 1);
  EXPECT_DOUBLE_EQ(time.untilNext()->count(), 0.5);
}

TEST(VirtualTime, MovesTheWallClockAlone) {
  VirtualTime time;
  const Seconds uptime = time.uptime();
  const WallTime now = time.now();
  time.moveWallClock(Seconds{-60});
  EXPECT_EQ(time.uptime(), uptime);
  EXPECT_EQ(secondsBetween(now, time.now()), Seconds{-60});
}

TEST(VirtualTime, MovesTheWallClockWithTheUptime) {
  VirtualTime time;
  const WallTime now = time.now();
  time.advance(Seconds{3});
  EXPECT_EQ(secondsBetween(now, time.now()), Seconds{3});
}

TEST(VirtualTime, DropsTheTasksOfAQueueThatEnds) {
  VirtualTime time;
  auto queue = time.makeQueue();
  int runs = 0;
  queue->post([&] { ++runs; });
  const auto timer = queue->runAfter(Seconds{1}, Seconds{0}, [&] { ++runs; });
  queue.reset();
  time.advance(Seconds{2});
  EXPECT_EQ(runs, 0);
}

TEST(VirtualTime, DropsATaskThatOwnsATimer) {
  VirtualTime time;
  auto queue = time.makeQueue();
  const auto other = time.makeQueue();
  std::shared_ptr<Timer> first = other->runAfter(Seconds{1}, Seconds{0}, [] {});
  std::shared_ptr<Timer> second = queue->runAfter(Seconds{1}, Seconds{0}, [] {});
  queue->post([owned = std::move(first), alsoOwned = std::move(second)] {});
  queue.reset();
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(VirtualTime, FailsInsteadOfHangingWhenTasksNeverEnd) {
  EXPECT_NONFATAL_FAILURE(
      {
        VirtualTime time;
        const auto queue = time.makeQueue();
        time.setTaskLimit(10);
        std::function<void()> again = [&] { queue->post(again); };
        queue->post(again);
        time.runPosted();
      },
      "more than 10 tasks");
}

}  // namespace
}  // namespace vantora::test
