// SPDX-License-Identifier: MIT
//
// Dispatch and the main run loop.
#include <dispatch/dispatch.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "dispatch/main_run_loop.hpp"
#include "dispatch/queues.hpp"

namespace standin {
namespace {

template <typename Function>
void async(dispatch_queue_t queue, Function function) {
  dispatch_async_f(queue, new Function(std::move(function)), [](void* context) {
    auto* held = static_cast<Function*>(context);
    (*held)();
    delete held;
  });
}

TEST(MainQueue, IsNeverEnteredAgainFromInsideOfItsItems) {
  std::string order;
  bool isOver = false;
  async(dispatch_get_main_queue(), [&] {
    bool isInnerOver = false;
    int observed = 0;
    const int identity = 0;
    MainRunLoop::addObserver(&identity, MainRunLoop::commonModes, [&] {
      isInnerOver = ++observed == 1;
      MainRunLoop::wake();
    });
    order += 'a';
    MainRunLoop::run(MainRunLoop::trackingMode, [&] { return isInnerOver; });
    MainRunLoop::removeObserver(&identity, MainRunLoop::commonModes);
    order += 'b';
  });
  async(dispatch_get_main_queue(), [&] {
    order += 'c';
    isOver = true;
  });
  MainRunLoop::run(MainRunLoop::defaultMode, [&] { return isOver; });
  EXPECT_EQ(order, "abc");
}

TEST(MainRunLoop, RunsSourcesInTheirModesAlone) {
  std::string order;
  const int source = 0;
  MainRunLoop::addSource(&source, MainRunLoop::defaultMode, [&] { order += 's'; });
  EXPECT_TRUE(MainRunLoop::signal(&source));
  int turns = 0;
  MainRunLoop::run(MainRunLoop::trackingMode, [&] {
    MainRunLoop::wake();
    return ++turns > 3;
  });
  EXPECT_EQ(order, "");
  MainRunLoop::run(MainRunLoop::defaultMode, [&] { return !order.empty(); });
  EXPECT_EQ(order, "s");
  MainRunLoop::removeSource(&source, MainRunLoop::defaultMode);
  EXPECT_FALSE(MainRunLoop::signal(&source));
}

TEST(MainRunLoop, RunsObserversBetweenTwoItemsOfTheMainQueue) {
  std::string order;
  const int identity = 0;
  MainRunLoop::addObserver(&identity, MainRunLoop::defaultMode, [&] { order += 'o'; });
  bool isOver = false;
  async(dispatch_get_main_queue(), [&] { order += 'a'; });
  async(dispatch_get_main_queue(), [&] {
    order += 'b';
    isOver = true;
  });
  MainRunLoop::run(MainRunLoop::defaultMode, [&] { return isOver; });
  MainRunLoop::removeObserver(&identity, MainRunLoop::defaultMode);
  EXPECT_EQ(order, "aob");
}

TEST(MainRunLoop, EndsAtItsDeadlineThoughNothingHappens) {
  const std::uint64_t begin = Dispatch::now();
  MainRunLoop::run(
      MainRunLoop::defaultMode, [] { return false; }, begin + 5'000'000);
  EXPECT_GE(Dispatch::now(), begin + 5'000'000);
}

TEST(MainRunLoopDeathTest, TakesNothingTwiceAndRemovesNothingThatIsNotThere) {
  const int source = 0;
  EXPECT_DEATH(MainRunLoop::removeSource(&source, MainRunLoop::defaultMode), "not added");
  EXPECT_DEATH(
      {
        MainRunLoop::addSource(&source, MainRunLoop::defaultMode, [] {});
        MainRunLoop::addSource(&source, MainRunLoop::defaultMode, [] {});
      },
      "twice");
}

TEST(SerialQueue, RunsItsItemsInOrderOnAThreadOfItsOwn) {
  dispatch_queue_t queue = dispatch_queue_create("test", DISPATCH_QUEUE_SERIAL);
  std::string order;
  async(queue, [&] { order += 'a'; });
  async(queue, [&] { order += 'b'; });
  dispatch_sync_f(queue, &order, [](void* text) { *static_cast<std::string*>(text) += 'c'; });
  EXPECT_EQ(order, "abc");
  dispatch_release(queue);
  EXPECT_EQ(Dispatch::livingQueues(), 0);
}

TEST(SerialQueueDeathTest, NeverWaitsForItself) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        dispatch_queue_t queue = dispatch_queue_create("test", DISPATCH_QUEUE_SERIAL);
        dispatch_sync_f(queue, queue, [](void* context) {
          dispatch_sync_f(static_cast<dispatch_queue_t>(context), nullptr, [](void*) {});
        });
      },
      "wait for itself");
}

TEST(TimerSources, CallTheirFinalizerOnTheQueueOnceNothingRefersToThem) {
  static std::atomic<int> finals;
  finals = 0;
  dispatch_queue_t queue = dispatch_queue_create("test", DISPATCH_QUEUE_SERIAL);
  dispatch_source_t source = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, queue);
  dispatch_source_set_event_handler_f(source, [](void*) {});
  dispatch_set_finalizer_f(source, [](void*) { ++finals; });
  dispatch_source_set_timer(source, dispatch_time(DISPATCH_TIME_NOW, 0), 1'000'000, 5'000'000);
  dispatch_activate(source);
  ASSERT_EQ(Dispatch::runningTimers().size(), 1U);
  EXPECT_EQ(Dispatch::runningTimers()[0].queue, "test");
  EXPECT_EQ(Dispatch::runningTimers()[0].leeway, 0.005);
  dispatch_source_cancel(source);
  EXPECT_TRUE(Dispatch::runningTimers().empty());
  dispatch_release(source);
  dispatch_sync_f(queue, nullptr, [](void*) {});
  EXPECT_EQ(finals, 1);
  EXPECT_EQ(Dispatch::livingSources(), 0);
  dispatch_release(queue);
}

TEST(TimerSourcesDeathTest, AreActivatedBeforeTheyAreReleased) {
  EXPECT_DEATH(
      {
        dispatch_source_t source =
            dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
        dispatch_source_set_event_handler_f(source, [](void*) {});
        dispatch_release(source);
      },
      "never activated");
}

TEST(TimerSourcesDeathTest, AreCancelledBeforeTheyAreReleased) {
  EXPECT_DEATH(
      {
        dispatch_source_t source =
            dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
        dispatch_source_set_event_handler_f(source, [](void*) {});
        dispatch_activate(source);
        dispatch_release(source);
      },
      "without having been cancelled");
}

}  // namespace
}  // namespace standin
