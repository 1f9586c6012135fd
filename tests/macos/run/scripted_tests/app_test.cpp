// SPDX-License-Identifier: MIT
//
// The application's adapters, and what they hold of the system.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "dispatch/main_run_loop.hpp"
#include "dispatch/queues.hpp"
#include "frameworks/Foundation/process_info.hpp"
#include "machine/machine.hpp"
#include "objc/autorelease_pools.hpp"
#include "platform/macos/app/dispatch_task_queue.hpp"
#include "platform/macos/app/embedded_uv_loop.hpp"
#include "platform/macos/app/single_agent.hpp"
#include "platform/macos/app/unthrottled_queue.hpp"
#include "platform/macos/app/workspace_power_events.hpp"
#include "platform/macos/app/workspace_url_opener.hpp"
#include "platform/macos/base/core_foundation.hpp"
#include "platform/macos/settings/application_folders.hpp"
#include "support/temporary_folder.hpp"

namespace standin {
void announceSleep();
void announceWake();
int notificationObservers();
}  // namespace standin

namespace vantora {
namespace {

void runUntil(const std::function<bool()>& isOver) {
  standin::MainRunLoop::run(standin::MainRunLoop::defaultMode, isOver);
}

TEST(UnthrottledQueue, HoldsAnActivityAsLongAsATimerRepeats) {
  DispatchSerialQueue serial("local.vantora.test");
  UnthrottledQueue queue(serial);
  std::promise<TimerHandle> made;
  queue.post([&] { made.set_value(queue.runEvery(Seconds{10}, Seconds{0.1}, [] {})); });
  TimerHandle timer = made.get_future().get();
  EXPECT_EQ(standin::heldActivities(), std::vector<std::uint64_t>{0x00EFFFFF});
  timer.reset();
  EXPECT_TRUE(standin::heldActivities().empty());
}

TEST(UnthrottledQueue, HoldsNoneForATimerThatRunsOnce) {
  DispatchSerialQueue serial("local.vantora.test");
  UnthrottledQueue queue(serial);
  std::promise<std::size_t> held;
  TimerHandle timer;
  queue.post([&] {
    timer = queue.runAfter(Seconds{0}, Seconds{0},
                           [&] { held.set_value(standin::heldActivities().size()); });
  });
  EXPECT_EQ(held.get_future().get(), 0U);
}

TEST(DispatchTaskQueue, GivesEveryTaskAPoolOfItsOwn) {
  DispatchMainQueue queue;
  const std::size_t before = standin::pooledObjects();
  int runs = 0;
  const TimerHandle once = queue.runAfter(Seconds{0}, Seconds{0}, [&] {
    (void)applicationSupportFolder();
    ++runs;
  });
  const TimerHandle often = queue.runEvery(Seconds{0.001}, Seconds{0}, [&] {
    (void)homeFolder();
    ++runs;
  });
  queue.post([&] {
    (void)homeFolder();
    ++runs;
  });
  runUntil([&] { return runs > 5; });
  EXPECT_EQ(standin::pooledObjects(), before);
}

TEST(EmbeddedUvLoop, RunsTimersAndDescriptorsOfLibuvInTheRunLoop) {
  EmbeddedUvLoop embedded;
  int fired = 0;
  uv_timer_t timer;
  uv_timer_init(&embedded.raw(), &timer);
  timer.data = &fired;
  uv_timer_start(
      &timer, [](uv_timer_t* handle) { ++*static_cast<int*>(handle->data); }, 5, 5);
  uv_async_t async;
  int woken = 0;
  uv_async_init(&embedded.raw(), &async,
                [](uv_async_t* handle) { ++*static_cast<int*>(handle->data); });
  async.data = &woken;
  uv_async_send(&async);
  runUntil([&] { return fired >= 3 && woken >= 1; });
  uv_close(reinterpret_cast<uv_handle_t*>(&timer), nullptr);
  uv_close(reinterpret_cast<uv_handle_t*>(&async), nullptr);
}

TEST(EmbeddedUvLoop, WakesTheRunLoopThatWaits) {
  EmbeddedUvLoop embedded;
  bool isWoken = false;
  uv_async_t async;
  uv_async_init(&embedded.raw(), &async, [](uv_async_t* handle) {
    *static_cast<bool*>(handle->data) = true;
    CFRunLoopStop(CFRunLoopGetMain());
  });
  async.data = &isWoken;
  // The first wait ends at once with the posted task. Nothing but the handle ends the second.
  DispatchMainQueue queue;
  queue.post([] {});
  const std::uint64_t before = standin::MainRunLoop::waits();
  std::atomic<bool> isOver = false;
  std::thread waker([&] {
    while (standin::MainRunLoop::waits() < before + 2 && !isOver) {
      std::this_thread::yield();
    }
    uv_async_send(&async);
  });
  constexpr CFTimeInterval limit = 20;
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, limit, 0), kCFRunLoopRunStopped);
  isOver = true;
  waker.join();
  EXPECT_TRUE(isWoken);
  uv_close(reinterpret_cast<uv_handle_t*>(&async), nullptr);
}

TEST(WorkspacePowerEvents, ReportsPowerSleepAndWakeUntilItEnds) {
  std::string told;
  DispatchMainQueue queue;
  {
    WorkspacePowerEvents events(queue);
    PowerEvents::Handlers handlers;
    handlers.onPowerSourceChange = [&] { told += 'p'; };
    handlers.onWillSleep = [&](const SleepHold& hold) {
      EXPECT_EQ(hold, nullptr);
      told += 's';
    };
    handlers.onDidWake = [&] { told += 'w'; };
    events.start(std::move(handlers));
    EXPECT_TRUE(standin::announcePowerChange());
    EXPECT_EQ(told, "");
    runUntil([&] { return !told.empty(); });
    standin::announceSleep();
    EXPECT_EQ(told, "ps");
    standin::announceWake();
    EXPECT_EQ(told, "psw");
  }
  ASSERT_EQ(standin::notificationObservers(), 0);
  ASSERT_EQ(standin::MainRunLoop::sourceCount(), 0);
  EXPECT_FALSE(standin::announcePowerChange());
  standin::announceSleep();
  EXPECT_EQ(told, "psw");
}

TEST(WorkspacePowerEvents, TakesHandlersThatAreEmpty) {
  DispatchMainQueue queue;
  WorkspacePowerEvents events(queue);
  events.start({});
  EXPECT_TRUE(standin::announcePowerChange());
  standin::announceSleep();
  standin::announceWake();
  bool isOver = false;
  queue.post([&] { queue.post([&] { isOver = true; }); });
  runUntil([&] { return isOver; });
}

TEST(WorkspaceUrlOpener, OpensAddressesAndNothingElse) {
  standin::resetMachine();
  WorkspaceUrlOpener opener;
  opener.open("https://auth.openai.com/a?b=c");
  opener.open("no address");
  EXPECT_EQ(standin::withMachine([](standin::Machine& machine) { return machine.openedAddresses; }),
            std::vector<std::string>{"https://auth.openai.com/a?b=c"});
}

TEST(SingleAgent, IsOneForEachFolder) {
  const test::TemporaryFolder folder;
  SingleAgent first(folder / "Vantora");
  EXPECT_TRUE(first.isFirst());
  EXPECT_FALSE(SingleAgent(folder / "Vantora").isFirst());
  EXPECT_TRUE(SingleAgent(folder / "other").isFirst());
  int asked = 0;
  first.answer([&] { ++asked; });
  EXPECT_TRUE(SingleAgent::ask());
  EXPECT_EQ(asked, 1);
}

TEST(SingleAgent, IsSeenWithoutBeingDisturbed) {
  const test::TemporaryFolder folder;
  EXPECT_FALSE(SingleAgent::isRunning(folder / "Vantora"));
  EXPECT_FALSE(std::filesystem::exists(folder / "Vantora")) << "looking makes nothing";
  {
    const SingleAgent agent(folder / "Vantora");
    EXPECT_TRUE(SingleAgent::isRunning(folder / "Vantora"));
    EXPECT_TRUE(agent.isFirst());
  }
  EXPECT_FALSE(SingleAgent::isRunning(folder / "Vantora"));
}

TEST(SingleAgent, GoesOnWhereNoLockCanBeHad) {
  const test::TemporaryFolder folder;
  test::writeBytes(folder / "Vantora", "a file in the way");
  EXPECT_TRUE(SingleAgent(folder / "Vantora").isFirst());
}

TEST(CoreFoundation, TakesEachObjectForWhatItIsAndForNothingElse) {
  const auto text = makeString("Vantora");
  EXPECT_EQ(asText(text.get()), "Vantora");
  EXPECT_EQ(asNumber(text.get()), std::nullopt);
  EXPECT_EQ(asFlag(text.get()), std::nullopt);
  EXPECT_EQ(asArray(text.get()), nullptr);
  EXPECT_EQ(asDictionary(nullptr), nullptr);
  EXPECT_EQ(asText(nullptr), std::nullopt);
  EXPECT_FALSE(makeString("\xff"));
}

}  // namespace
}  // namespace vantora
