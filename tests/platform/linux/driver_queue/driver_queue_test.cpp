// SPDX-License-Identifier: MIT
#include "platform/linux/driver_queue/driver_queue.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <cerrno>
#include <future>
#include <string>
#include <system_error>

#include "runtime/task_queue_contract.hpp"
#include "runtime/uv_loop.hpp"
#include "support/no_threads.hpp"

namespace vantora::test {
namespace {

struct DriverQueuePlace {
  UvLoop loop;
  DriverQueue driverQueue{loop.raw(), "test"};
  TaskQueue& queue() { return driverQueue; }
};
INSTANTIATE_TYPED_TEST_SUITE_P(DriverQueue, TaskQueueContract, DriverQueuePlace);

// A driver that answers when the test lets it.
class HeldDriver {
 public:
  std::function<void()> asWork() {
    return [this, held = held_] {
      begun_.set_value();
      held.wait();
    };
  }
  void waitUntilAsked() { begun_.get_future().wait(); }
  void answer() { answer_.set_value(); }

 private:
  std::promise<void> begun_;
  std::promise<void> answer_;
  std::shared_future<void> held_ = answer_.get_future().share();
};

class DriverQueueTest : public testing::Test {
 protected:
  static constexpr Seconds atOnce{0.001};
  static constexpr Seconds never{3600};

  void make(Seconds maxCallTime) { queue.emplace(loop.raw(), "test", maxCallTime); }
  // Runs the loop until the queue has come to what is posted now.
  void runUntilItGoesOn() {
    queue->post([this] { loop.queue().post([this] { loop.stop(); }); });
    loop.run();
  }

  UvLoop loop;
  std::optional<DriverQueue> queue;
};

TEST_F(DriverQueueTest, RunsACallAfterTheTaskUnderWayAndBeforeEveryOther) {
  make(never);
  std::string order;
  runOn(*queue, [&] {
    queue->call([&] { order += 'w'; }, [&] { order += 'd'; });
    queue->post([&] { order += 'n'; });
    order += 't';
  });
  runOn(*queue, [] {});
  EXPECT_EQ(order, "twdn");
}

TEST_F(DriverQueueTest, AsksTheDriverOnItsOwnThread) {
  make(never);
  std::thread::id task;
  std::thread::id work;
  std::thread::id done;
  runOn(*queue, [&] {
    task = std::this_thread::get_id();
    queue->call([&] { work = std::this_thread::get_id(); },
                [&] { done = std::this_thread::get_id(); });
  });
  runOn(*queue, [] {});
  EXPECT_EQ(work, task);
  EXPECT_EQ(done, task);
}

TEST_F(DriverQueueTest, TakesACallFromWhatFollowsACall) {
  make(never);
  std::string order;
  runOn(*queue, [&] {
    queue->call([&] { order += 'a'; },
                [&] { queue->call([&] { order += 'b'; }, [&] { order += 'c'; }); });
  });
  runOn(*queue, [] {});
  EXPECT_EQ(order, "abc");
}

TEST_F(DriverQueueTest, GoesOnOnAnotherThreadWhileADriverHangs) {
  make(atOnce);
  HeldDriver driver;
  std::thread::id before;
  std::thread::id after;
  std::string order;
  queue->post([&] {
    before = std::this_thread::get_id();
    queue->call(driver.asWork(), [&] {
      order += 'd';
      after = std::this_thread::get_id();
    });
    queue->post([&] { order += 'n'; });
  });
  driver.waitUntilAsked();
  runUntilItGoesOn();
  EXPECT_EQ(order, "dn");
  EXPECT_NE(after, before);
  driver.answer();
}

TEST_F(DriverQueueTest, KeepsItsTimersWhileADriverHangs) {
  make(atOnce);
  HeldDriver driver;
  TimerHandle timer;
  queue->post([&] {
    timer = queue->runEvery(Seconds{0.002}, Seconds{0}, [&, runs = 0]() mutable {
      if (++runs == 3) {
        loop.queue().post([&] { loop.stop(); });
      }
    });
    queue->call(driver.asWork(), [] {});
  });
  driver.waitUntilAsked();
  loop.run();
  runOn(*queue, [&] { timer.reset(); });
  driver.answer();
}

TEST_F(DriverQueueTest, LetsTheThreadThatItLeftBehindEndWithItsCall) {
  make(atOnce);
  HeldDriver driver;
  std::atomic<int> endings = 0;
  queue->post([&] { queue->call(driver.asWork(), [&] { ++endings; }); });
  driver.waitUntilAsked();
  runUntilItGoesOn();
  driver.answer();
  queue->stop();
  EXPECT_TRUE(queue->waitUntil(std::chrono::steady_clock::now() + std::chrono::minutes(10)));
  EXPECT_EQ(endings, 1);
}

TEST_F(DriverQueueTest, LeavesSeveralDriversBehindThatHang) {
  make(atOnce);
  HeldDriver first;
  HeldDriver second;
  queue->post([&] { queue->call(first.asWork(), [&] { queue->call(second.asWork(), [] {}); }); });
  first.waitUntilAsked();
  runUntilItGoesOn();
  second.waitUntilAsked();
  runUntilItGoesOn();
  first.answer();
  second.answer();
}

TEST_F(DriverQueueTest, LeavesNoCallBehindThatAnswersInTime) {
  make(never);
  std::thread::id before;
  std::thread::id after;
  runOn(*queue, [&] { before = std::this_thread::get_id(); });
  for (int round = 0; round < 100; ++round) {
    queue->post([&] { queue->call([] {}, [] {}); });
  }
  runUntilItGoesOn();
  runOn(*queue, [&] { after = std::this_thread::get_id(); });
  EXPECT_EQ(after, before);
}

TEST_F(DriverQueueTest, TriesAgainWhereTheSystemHasNoThreadToGoOnWith) {
  make(atOnce);
  HeldDriver driver;
  queue->post([&] { queue->call(driver.asWork(), [] {}); });
  driver.waitUntilAsked();
  {
    const NoThreads none;
    const auto later = loop.queue().runAfter(Seconds{0.01}, Seconds{0}, [&] { loop.stop(); });
    loop.run();
  }
  runUntilItGoesOn();
  driver.answer();
}

TEST_F(DriverQueueTest, SaysWhenADriverKeepsItFromEnding) {
  make(atOnce);
  HeldDriver driver;
  queue->post([&] { queue->call(driver.asWork(), [] {}); });
  driver.waitUntilAsked();
  runUntilItGoesOn();
  queue->stop();
  EXPECT_FALSE(queue->waitUntil(std::chrono::steady_clock::now()));
  driver.answer();
  EXPECT_TRUE(queue->waitUntil(std::chrono::steady_clock::now() + std::chrono::minutes(10)));
}

TEST_F(DriverQueueTest, DropsWhatHasNotBegunWhenItEnds) {
  make(never);
  HeldDriver driver;
  const auto witness = std::make_shared<int>(0);
  queue->post([&, witness] {
    queue->call(driver.asWork(), [witness] { ADD_FAILURE() << "it was to be dropped"; });
  });
  driver.waitUntilAsked();
  queue->post([witness] { ADD_FAILURE() << "it was to be dropped"; });
  queue->stop();
  queue->post([witness] { ADD_FAILURE() << "it was to be dropped"; });
  driver.answer();
  EXPECT_TRUE(queue->waitUntil(std::chrono::steady_clock::now() + std::chrono::minutes(10)));
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(DriverQueueTest, ThrowsWhereNoThreadIsLeft) {
  const NoThreads none;
  EXPECT_THROW(make(never), std::system_error);
}

TEST_F(DriverQueueTest, ThrowsWhereNoDescriptorIsLeft) {
  // Sanitizers take descriptors for their first look at a type.
  const std::system_error looked(EMFILE, std::generic_category());
  make(never);
  queue.reset();
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{3, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  EXPECT_THROW(make(never), std::system_error);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

}  // namespace
}  // namespace vantora::test
