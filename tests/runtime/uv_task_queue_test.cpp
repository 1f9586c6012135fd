// SPDX-License-Identifier: MIT
#include "runtime/uv_task_queue.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <future>
#include <string>
#include <system_error>

#include "runtime/system_clock.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora {
namespace {

// Runs `body` on the queue's thread and waits for it.
void runOn(TaskQueue& queue, const std::function<void()>& body) {
  std::promise<void> done;
  queue.post([&] {
    body();
    done.set_value();
  });
  done.get_future().wait();
}

TEST(UvTaskQueue, RunsPostedTasksInOrderOnItsThread) {
  UvQueueThread thread("test");
  std::string order;
  std::thread::id first;
  std::thread::id second;
  thread.queue().post([&] {
    order += 'a';
    first = std::this_thread::get_id();
  });
  runOn(thread.queue(), [&] {
    order += 'b';
    second = std::this_thread::get_id();
  });
  EXPECT_EQ(order, "ab");
  EXPECT_EQ(first, second);
  EXPECT_NE(first, std::this_thread::get_id());
}

TEST(UvTaskQueue, RunsATaskThatATaskPosts) {
  UvQueueThread thread("test");
  std::promise<void> done;
  thread.queue().post([&] { thread.queue().post([&] { done.set_value(); }); });
  done.get_future().wait();
}

TEST(UvTaskQueue, NeverRunsATimerEarly) {
  UvQueueThread thread("test");
  const SystemClock clock;
  std::promise<Seconds> elapsed;
  TimerHandle timer;
  runOn(thread.queue(), [&] {
    const Seconds start = clock.uptime();
    timer = thread.queue().runAfter(Seconds{0.0123}, Seconds{0},
                                    [&, start] { elapsed.set_value(clock.uptime() - start); });
  });
  EXPECT_GE(elapsed.get_future().get(), Seconds{0.0123});
  runOn(thread.queue(), [&] { timer.reset(); });
}

TEST(UvTaskQueue, RepeatsATimerOnItsGrid) {
  UvQueueThread thread("test");
  const SystemClock clock;
  std::promise<void> done;
  TimerHandle timer;
  std::vector<double> instants;
  runOn(thread.queue(), [&] {
    const Seconds start = clock.uptime();
    timer = thread.queue().runEvery(Seconds{0.01}, Seconds{0}, [&, start] {
      instants.push_back((clock.uptime() - start).count());
      if (instants.size() == 3) {
        timer.reset();
        done.set_value();
      }
    });
  });
  done.get_future().wait();
  runOn(thread.queue(), [] {});
  ASSERT_EQ(instants.size(), 3U);
  for (std::size_t index = 0; index < instants.size(); ++index) {
    EXPECT_GE(instants[index], 0.01 * static_cast<double>(index + 1));
  }
}

TEST(UvTaskQueue, NeverRunsATimerWhoseHandleIsGone) {
  UvQueueThread thread("test");
  int runs = 0;
  runOn(thread.queue(), [&] {
    auto timer = thread.queue().runAfter(Seconds{0}, Seconds{0}, [&] { ++runs; });
    timer.reset();
  });
  std::promise<void> later;
  TimerHandle waiting;
  runOn(thread.queue(), [&] {
    waiting = thread.queue().runAfter(Seconds{0.005}, Seconds{0}, [&] { later.set_value(); });
  });
  later.get_future().wait();
  EXPECT_EQ(runs, 0);
  runOn(thread.queue(), [&] { waiting.reset(); });
}

TEST(UvTaskQueue, TakesAHandleThatAnotherThreadDestroys) {
  UvQueueThread thread("test");
  TimerHandle timer;
  runOn(thread.queue(),
        [&] { timer = thread.queue().runEvery(Seconds{0.001}, Seconds{0.001}, [] {}); });
  timer.reset();
  runOn(thread.queue(), [] {});
}

TEST(UvTaskQueue, TakesAHandleThatOutlivesTheQueue) {
  TimerHandle timer;
  bool isTaskAlive = true;
  {
    UvQueueThread thread("test");
    const std::shared_ptr<void> witness(nullptr, [&](void*) { isTaskAlive = false; });
    runOn(thread.queue(), [&, witness] {
      timer = thread.queue().runAfter(Seconds{3600}, Seconds{0}, [witness] {});
    });
  }
  timer.reset();
  EXPECT_FALSE(isTaskAlive);
}

TEST(UvTaskQueue, DropsWhatIsPostedButNotBegunWhenItEnds) {
  UvLoop loop;
  int runs = 0;
  loop.queue().post([&] {
    loop.queue().post([&] { ++runs; });
    loop.stop();
  });
  loop.run();
  EXPECT_EQ(runs, 0);
}

TEST(UvQueueThread, EndsByTheDeadlineWhenNoTaskHoldsIt) {
  UvQueueThread thread("test");
  thread.stop();
  EXPECT_TRUE(thread.waitUntil(std::chrono::steady_clock::now() + std::chrono::minutes(10)));
}

TEST(UvQueueThread, SaysWhenATaskKeepsItFromEnding) {
  std::promise<void> held;
  UvQueueThread thread("test");
  thread.queue().post([held = held.get_future().share()] { held.wait(); });
  thread.stop();
  EXPECT_FALSE(thread.waitUntil(std::chrono::steady_clock::now()));
  held.set_value();
  EXPECT_TRUE(thread.waitUntil(std::chrono::steady_clock::now() + std::chrono::minutes(10)));
}

TEST(UvQueueThread, ThrowsWhereNoDescriptorIsLeftForItsLoop) {
  const UvLoop earlier;  // libuv's first loop aborts where it finds none
  // Sanitizers take descriptors for their first look at a type.
  const UvQueueThread seen("seen");
  const std::system_error looked(EMFILE, std::generic_category());
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{3, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  EXPECT_THROW(UvQueueThread("test"), std::system_error);
  EXPECT_THROW(UvLoop(), std::system_error);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

TEST(UvLoop, RunsItsQueueOnTheCallingThread) {
  UvLoop loop;
  std::thread::id seen;
  loop.queue().post([&] {
    seen = std::this_thread::get_id();
    loop.stop();
  });
  loop.run();
  EXPECT_EQ(seen, std::this_thread::get_id());
}

}  // namespace
}  // namespace vantora
