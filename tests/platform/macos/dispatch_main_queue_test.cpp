// SPDX-License-Identifier: MIT
#include "platform/macos/dispatch_main_queue.hpp"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "runtime/system_clock.hpp"

namespace vantora {
namespace {

class DispatchMainQueueOnTheRunLoop : public ::testing::Test {
 protected:
  // Runs the main run loop until end() is called; a test that never ends fails.
  void run() { EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, 0), kCFRunLoopRunStopped); }
  static void end() { CFRunLoopStop(CFRunLoopGetMain()); }

  SystemClock clock;
  std::optional<DispatchMainQueue> queue{std::in_place};
};

TEST_F(DispatchMainQueueOnTheRunLoop, RunsPostedTasksInOrderAndNeverInsideOfPost) {
  std::string order;
  queue->post([&] {
    queue->post([&] {
      order += 'c';
      end();
    });
    order += 'a';
  });
  queue->post([&] { order += 'b'; });
  EXPECT_EQ(order, "");
  run();
  EXPECT_EQ(order, "abc");
}

TEST_F(DispatchMainQueueOnTheRunLoop, NeverRunsATimerEarly) {
  const Seconds start = clock.uptime();
  Seconds elapsed{0};
  const TimerHandle timer = queue->runAfter(Seconds{0.0123}, Seconds{0}, [&] {
    elapsed = clock.uptime() - start;
    end();
  });
  run();
  EXPECT_GE(elapsed, Seconds{0.0123});
}

TEST_F(DispatchMainQueueOnTheRunLoop, LetsARepeatingTaskDestroyItsOwnHandle) {
  int runs = 0;
  TimerHandle timer;
  TimerHandle after;
  timer = queue->runEvery(Seconds{0.001}, Seconds{0}, [&] {
    if (++runs == 3) {
      timer.reset();
      after = queue->runAfter(Seconds{0.01}, Seconds{0}, [] { end(); });
    }
  });
  run();
  EXPECT_EQ(runs, 3);
}

TEST_F(DispatchMainQueueOnTheRunLoop, NeverRunsATimerWhoseHandleIsGone) {
  int runs = 0;
  TimerHandle gone = queue->runAfter(Seconds{0}, Seconds{0}, [&] { ++runs; });
  gone.reset();
  const TimerHandle after = queue->runAfter(Seconds{0.01}, Seconds{0}, [] { end(); });
  run();
  EXPECT_EQ(runs, 0);
}

TEST_F(DispatchMainQueueOnTheRunLoop, DropsWhatHasNotBegunWhenItEnds) {
  int runs = 0;
  queue->post([&] { ++runs; });
  queue.emplace();
  queue->post([] { end(); });
  run();
  EXPECT_EQ(runs, 0);
}

}  // namespace
}  // namespace vantora
