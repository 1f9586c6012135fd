// SPDX-License-Identifier: MIT
//
// What every queue with a thread of its own keeps. `Place` makes one and owns it:
//
//     struct Place { TaskQueue& queue(); };
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "runtime/system_clock.hpp"
#include "runtime/task_queue.hpp"

namespace vantora::test {

/// Runs `body` on the queue's thread and waits for it.
inline void runOn(TaskQueue& queue, const std::function<void()>& body) {
  std::promise<void> done;
  queue.post([&] {
    body();
    done.set_value();
  });
  done.get_future().wait();
}

template <typename Place>
class TaskQueueContract : public testing::Test {
 protected:
  [[nodiscard]] TaskQueue& queue() { return place_->queue(); }

  std::optional<Place> place_{std::in_place};
};
TYPED_TEST_SUITE_P(TaskQueueContract);

TYPED_TEST_P(TaskQueueContract, RunsPostedTasksInOrderOnItsThread) {
  std::string order;
  std::thread::id first;
  std::thread::id second;
  this->queue().post([&] {
    order += 'a';
    first = std::this_thread::get_id();
  });
  runOn(this->queue(), [&] {
    order += 'b';
    second = std::this_thread::get_id();
  });
  EXPECT_EQ(order, "ab");
  EXPECT_EQ(first, second);
  EXPECT_NE(first, std::this_thread::get_id());
}

TYPED_TEST_P(TaskQueueContract, RunsATaskThatATaskPosts) {
  std::promise<void> done;
  this->queue().post([&] { this->queue().post([&] { done.set_value(); }); });
  done.get_future().wait();
}

TYPED_TEST_P(TaskQueueContract, NeverRunsATimerEarly) {
  const SystemClock clock;
  std::promise<Seconds> elapsed;
  TimerHandle timer;
  runOn(this->queue(), [&] {
    const Seconds start = clock.uptime();
    timer = this->queue().runAfter(Seconds{0.0123}, Seconds{0},
                                   [&, start] { elapsed.set_value(clock.uptime() - start); });
  });
  EXPECT_GE(elapsed.get_future().get(), Seconds{0.0123});
  runOn(this->queue(), [&] { timer.reset(); });
}

TYPED_TEST_P(TaskQueueContract, RunsTimersByTheirDueTimes) {
  std::string order;
  std::promise<void> done;
  std::vector<TimerHandle> timers;
  runOn(this->queue(), [&] {
    timers.push_back(this->queue().runAfter(Seconds{0.004}, Seconds{0}, [&] {
      order += 'b';
      done.set_value();
    }));
    timers.push_back(this->queue().runAfter(Seconds{0.002}, Seconds{0}, [&] { order += 'a'; }));
  });
  done.get_future().wait();
  EXPECT_EQ(order, "ab");
  runOn(this->queue(), [&] { timers.clear(); });
}

TYPED_TEST_P(TaskQueueContract, RepeatsATimerOnItsGrid) {
  const SystemClock clock;
  std::promise<void> done;
  TimerHandle timer;
  std::vector<double> instants;
  runOn(this->queue(), [&] {
    const Seconds start = clock.uptime();
    timer = this->queue().runEvery(Seconds{0.01}, Seconds{0}, [&, start] {
      instants.push_back((clock.uptime() - start).count());
      if (instants.size() == 3) {
        timer.reset();
        done.set_value();
      }
    });
  });
  done.get_future().wait();
  runOn(this->queue(), [] {});
  ASSERT_EQ(instants.size(), 3U);
  for (std::size_t index = 0; index < instants.size(); ++index) {
    EXPECT_GE(instants[index], 0.01 * static_cast<double>(index + 1));
  }
}

TYPED_TEST_P(TaskQueueContract, NeverRunsATimerWhoseHandleIsGone) {
  int runs = 0;
  runOn(this->queue(), [&] {
    auto timer = this->queue().runAfter(Seconds{0}, Seconds{0}, [&] { ++runs; });
    timer.reset();
  });
  std::promise<void> later;
  TimerHandle waiting;
  runOn(this->queue(), [&] {
    waiting = this->queue().runAfter(Seconds{0.005}, Seconds{0}, [&] { later.set_value(); });
  });
  later.get_future().wait();
  EXPECT_EQ(runs, 0);
  runOn(this->queue(), [&] { waiting.reset(); });
}

TYPED_TEST_P(TaskQueueContract, TakesAHandleThatAnotherThreadDestroys) {
  TimerHandle timer;
  runOn(this->queue(),
        [&] { timer = this->queue().runEvery(Seconds{0.001}, Seconds{0.001}, [] {}); });
  timer.reset();
  runOn(this->queue(), [] {});
}

TYPED_TEST_P(TaskQueueContract, TakesAHandleThatOutlivesTheQueue) {
  TimerHandle timer;
  bool isTaskAlive = true;
  {
    const std::shared_ptr<void> witness(nullptr, [&](void*) { isTaskAlive = false; });
    runOn(this->queue(), [&, witness] {
      timer = this->queue().runAfter(Seconds{3600}, Seconds{0}, [witness] {});
    });
  }
  this->place_.reset();
  timer.reset();
  EXPECT_FALSE(isTaskAlive);
}

REGISTER_TYPED_TEST_SUITE_P(TaskQueueContract, RunsPostedTasksInOrderOnItsThread,
                            RunsATaskThatATaskPosts, NeverRunsATimerEarly,
                            RunsTimersByTheirDueTimes, RepeatsATimerOnItsGrid,
                            NeverRunsATimerWhoseHandleIsGone, TakesAHandleThatAnotherThreadDestroys,
                            TakesAHandleThatOutlivesTheQueue);

}  // namespace vantora::test
