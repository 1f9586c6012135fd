// SPDX-License-Identifier: MIT
#include "platform/macos/app/dispatch_task_queue.hpp"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

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

TEST(DispatchSerialQueue, RunsItsTasksInOrderBesideTheMainThread) {
  std::string order;
  std::promise<std::thread::id> thread;
  {
    DispatchSerialQueue queue("local.vantora.test");
    queue.post([&] { order += 'a'; });
    queue.post([&] {
      order += 'b';
      thread.set_value(std::this_thread::get_id());
    });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
  }
  EXPECT_EQ(order, "ab");
}

TEST(DispatchSerialQueue, WaitsAtItsEndForTheTaskThatIsUnderWayAndDropsTheRest) {
  std::promise<void> hasBegun;
  std::promise<void> mayEnd;
  int runs = 0;
  auto queue = std::make_unique<DispatchSerialQueue>("local.vantora.test");
  queue->post([&] {
    hasBegun.set_value();
    mayEnd.get_future().wait();
    ++runs;
  });
  hasBegun.get_future().wait();
  queue->post([&] { runs += 10; });
  std::thread letting([&] { mayEnd.set_value(); });
  queue.reset();
  letting.join();
  // The second one may have begun before the end did.
  EXPECT_TRUE(runs == 1 || runs == 11) << runs;
}

TEST(DispatchSerialQueue, RepeatsATaskUntilItsHandleIsGoneOnTheQueue) {
  std::promise<void> done;
  int runs = 0;
  TimerHandle timer;
  DispatchSerialQueue queue("local.vantora.test");
  queue.post([&] {
    timer = queue.runEvery(Seconds{0.001}, Seconds{0}, [&] {
      if (++runs == 3) {
        timer.reset();
        done.set_value();
      }
    });
  });
  done.get_future().wait();
  EXPECT_EQ(runs, 3);
}

}  // namespace
}  // namespace vantora
