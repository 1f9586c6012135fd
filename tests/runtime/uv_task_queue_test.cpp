// SPDX-License-Identifier: MIT
#include "runtime/uv_task_queue.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <future>
#include <string>
#include <system_error>

#include "runtime/task_queue_contract.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora::test {
namespace {

struct UvPlace {
  UvQueueThread thread{"test"};
  TaskQueue& queue() { return thread.queue(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(UvQueueThread, TaskQueueContract, UvPlace);

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
}  // namespace vantora::test
