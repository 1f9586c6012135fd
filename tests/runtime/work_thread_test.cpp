// SPDX-License-Identifier: MIT
#include "runtime/work_thread.hpp"

#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <string>
#include <thread>

#include "support/no_threads.hpp"
#include "support/real_processes.hpp"

namespace vantora {
namespace {

using Instant = std::chrono::steady_clock::time_point;

Instant inTenMinutes() {
  return std::chrono::steady_clock::now() + std::chrono::minutes(10);
}

std::thread::id threadOf(WorkThread& thread) {
  std::promise<std::thread::id> answer;
  EXPECT_TRUE(thread.post([&] { answer.set_value(std::this_thread::get_id()); }));
  return answer.get_future().get();
}

TEST(WorkThread, RunsTasksInOrderOnAThreadOfItsOwn) {
  WorkThread thread("test");
  std::string order;
  for (const char name : {'a', 'b', 'c'}) {
    EXPECT_TRUE(thread.post([&, name] {
      order += name;
      EXPECT_NE(std::this_thread::get_id(), std::thread::id());
    }));
  }
  EXPECT_NE(threadOf(thread), std::this_thread::get_id());
  EXPECT_EQ(order, "abc");
}

TEST(WorkThread, KeepsNoThreadOnceItIsIdle) {
  test::RealProcesses loop;
  // ThreadSanitizer starts a thread of its own with the program's first.
  std::thread([] {}).join();
  const auto before = test::ProcessCensus::take();
  WorkThread thread("test");
  for (int round = 0; round < 3; ++round) {
    (void)threadOf(thread);
    loop.runUntilBackTo(before);
  }
}

TEST(WorkThread, LeavesATaskAsItWasWhereTheSystemHasNoThread) {
  WorkThread thread("test");
  int runs = 0;
  WorkThread::Task task = [&] { ++runs; };
  {
    const test::NoThreads none;
    EXPECT_FALSE(thread.post(std::move(task)));
  }
  task();
  EXPECT_EQ(runs, 1);
}

TEST(WorkThread, FinishesWhatItWasGivenBeforeItEnds) {
  int runs = 0;
  {
    WorkThread thread("test");
    for (int round = 0; round < 100; ++round) {
      EXPECT_TRUE(thread.post([&] { ++runs; }));
    }
  }
  EXPECT_EQ(runs, 100);
}

TEST(WorkThread, SaysWhenATaskKeepsItFromEndingAndDropsWhatHasNotBegun) {
  std::promise<void> held;
  std::promise<void> begun;
  const auto witness = std::make_shared<int>(0);
  WorkThread thread("test");
  EXPECT_TRUE(thread.post([&begun, held = held.get_future().share()] {
    begun.set_value();
    held.wait();
  }));
  EXPECT_TRUE(thread.post([witness] { ADD_FAILURE() << "it was to be dropped"; }));
  begun.get_future().wait();
  EXPECT_FALSE(thread.endBy(std::chrono::steady_clock::now()));
  EXPECT_EQ(witness.use_count(), 1);
  held.set_value();
  EXPECT_TRUE(thread.endBy(inTenMinutes()));
}

}  // namespace
}  // namespace vantora
