// SPDX-License-Identifier: MIT
#include "sampling/bounded_read.hpp"

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

#include "support/no_threads.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

constexpr Seconds ample{600};

// A read that returns when the test lets it.
class HeldRead {
 public:
  std::function<std::string()> as(std::string answer) {
    return [held = held_, answer] {
      held.wait();
      return answer;
    };
  }
  void release() { promise_.set_value(); }

 private:
  std::promise<void> promise_;
  std::shared_future<void> held_ = promise_.get_future().share();
};

class BoundedReadTest : public testing::Test {
 protected:
  // Waits until the thread has done what it was given.
  void letTheThreadFinish() {
    std::promise<void> done;
    ASSERT_TRUE(thread.post([&] { done.set_value(); }));
    done.get_future().wait();
  }
  std::function<std::string()> counted(std::string answer) {
    return [this, answer] {
      ++reads;
      return answer;
    };
  }

  test::VirtualTime time;
  WorkThread thread{"test"};
  int reads = 0;
};

TEST_F(BoundedReadTest, ReturnsWhatTheReadAnswersOnAThreadOfItsOwn) {
  BoundedRead<std::thread::id> read(thread, time, {.waitTimeout = ample});
  EXPECT_FALSE(thread.hasStarted());
  const auto answer = read([] { return std::this_thread::get_id(); });
  ASSERT_TRUE(answer.has_value());
  EXPECT_NE(*answer, std::this_thread::get_id());
}

TEST_F(BoundedReadTest, ReadsAnewEachTime) {
  BoundedRead<std::string> read(thread, time, {.waitTimeout = ample});
  EXPECT_EQ(read([] { return std::string("first"); }), "first");
  EXPECT_EQ(read([] { return std::string("second"); }), "second");
}

TEST_F(BoundedReadTest, DoesNotWaitForAReadThatBlocks) {
  HeldRead held;
  BoundedRead<std::string> read(thread, time, {.waitTimeout = Seconds{0}});
  EXPECT_EQ(read(held.as("late")), std::nullopt);
  EXPECT_EQ(read(counted("another")), std::nullopt);
  held.release();
  letTheThreadFinish();
  EXPECT_EQ(reads, 0) << "one read at a time";
}

TEST_F(BoundedReadTest, KeepsTheAnswerBeforeUntilTheReadIsOverdue) {
  HeldRead held;
  BoundedRead<std::string> read(thread, time,
                                {.waitTimeout = Seconds{0}, .overdueAfter = Seconds{5}});
  (void)read(counted("before"));
  letTheThreadFinish();
  EXPECT_EQ(read(held.as("late")), "before");
  time.advance(Seconds{5});
  EXPECT_EQ(read(counted("another")), "before");
  time.advance(Seconds{0.1});
  EXPECT_EQ(read(counted("another")), std::nullopt);
  held.release();
}

TEST_F(BoundedReadTest, TakesALateAnswerAndReadsOn) {
  HeldRead held;
  HeldRead second;
  BoundedRead<std::string> read(thread, time, {.waitTimeout = Seconds{0}});
  (void)read(held.as("late"));
  time.advance(Seconds{3600});
  EXPECT_EQ(read(counted("another")), std::nullopt);
  held.release();
  letTheThreadFinish();
  EXPECT_EQ(read(second.as("next")), "late");
  second.release();
}

TEST_F(BoundedReadTest, MayEndBeforeTheReadReturns) {
  HeldRead held;
  {
    BoundedRead<std::string> read(thread, time, {.waitTimeout = Seconds{0}});
    EXPECT_EQ(read(held.as("late")), std::nullopt);
  }
  held.release();
  letTheThreadFinish();
}

TEST_F(BoundedReadTest, ReturnsNothingWhereNoThreadCanBeStarted) {
  BoundedRead<std::string> read(thread, time, {.waitTimeout = ample});
  {
    const test::NoThreads none;
    EXPECT_EQ(read(counted("never")), std::nullopt);
  }
  EXPECT_EQ(read(counted("now")), "now");
}

TEST_F(BoundedReadTest, ReturnsARecentAnswerAtOnceAndReadsForTheNextCall) {
  HeldRead held;
  BoundedRead<std::string> read(thread, time, {.waitTimeout = ample, .reuseFor = Seconds{2.5}});
  EXPECT_EQ(read(counted("first")), "first");
  time.advance(Seconds{2});
  EXPECT_EQ(read(held.as("second")), "first");
  held.release();
  letTheThreadFinish();
  time.advance(Seconds{2.4});
  EXPECT_EQ(read(counted("third")), "second");
}

TEST_F(BoundedReadTest, WaitsAgainOnceItsAnswerIsOld) {
  BoundedRead<std::string> read(thread, time, {.waitTimeout = ample, .reuseFor = Seconds{2.5}});
  EXPECT_EQ(read(counted("first")), "first");
  time.advance(Seconds{2.6});
  EXPECT_EQ(read(counted("second")), "second");
}

TEST_F(BoundedReadTest, WaitsAgainOnceItsAnswerIsForgotten) {
  BoundedRead<std::string> read(thread, time, {.waitTimeout = ample, .reuseFor = Seconds{2.5}});
  EXPECT_EQ(read(counted("first")), "first");
  read.forget();
  EXPECT_EQ(read(counted("second")), "second");
}

TEST_F(BoundedReadTest, ReusesNoAnswerOnceTheReadForTheNextCallIsOverdue) {
  HeldRead held;
  BoundedRead<std::string> read(
      thread, time, {.waitTimeout = ample, .overdueAfter = Seconds{5}, .reuseFor = Seconds{2.5}});
  EXPECT_EQ(read(counted("first")), "first");
  EXPECT_EQ(read(held.as("late")), "first");
  time.advance(Seconds{5.1});
  EXPECT_EQ(read(counted("another")), std::nullopt);
  held.release();
}

}  // namespace
}  // namespace vantora
