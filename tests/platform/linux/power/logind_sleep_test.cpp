// SPDX-License-Identifier: MIT
#include "platform/linux/power/logind_sleep.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/power/scripted_logind.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"

namespace vantora {
namespace {

using test::runUntil;
using test::ScriptedLogind;

class LogindSleep : public testing::Test {
 protected:
  ~LogindSleep() override { connection.remove(sleep); }

  void startLogind() {
    logind = std::make_unique<ScriptedLogind>(loop.raw(), loop.queue(), daemon.address());
    ASSERT_TRUE(runUntil(loop, [&] { return logind->isReady(); }));
  }
  void connect() {
    connection.add(sleep);
    connection.open();
    ASSERT_TRUE(runUntil(loop, [&] { return connection.bus() != nullptr; }));
  }
  void startAndConnect() {
    startLogind();
    connect();
    ASSERT_TRUE(runUntil(loop, [&] { return logind->isHeld(); }));
  }

  test::PrivateBus daemon;
  UvLoop loop;
  std::unique_ptr<ScriptedLogind> logind;
  BusConnection connection{loop.raw(), loop.queue(), daemon.address()};
  int sleeps = 0;
  int wakes = 0;
  SleepHold hold;
  vantora::LogindSleep sleep{[this](SleepHold given) {
                               ++sleeps;
                               hold = std::move(given);
                             },
                             [this] { ++wakes; }};
};

TEST_F(LogindSleep, TakesADelayLockWhileTheMachineIsAwake) {
  startAndConnect();
  EXPECT_EQ(logind->locks, std::vector<std::string>{
                               "sleep|Vantora|Encerrar as leituras antes da suspensão|delay"});
  EXPECT_EQ(sleeps, 0);
}

TEST_F(LogindSleep, LetsTheMachineWaitUntilTheHoldIsLetGoOf) {
  startAndConnect();
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 1; }));
  EXPECT_TRUE(logind->isHeld());
  SleepHold copy = hold;  // as a task on another queue keeps one
  hold.reset();
  EXPECT_TRUE(logind->isHeld());
  copy.reset();
  EXPECT_FALSE(logind->isHeld());
  EXPECT_EQ(wakes, 0);
}

TEST_F(LogindSleep, TakesTheLockAgainAfterTheWake) {
  startAndConnect();
  for (int round = 1; round <= 3; ++round) {
    logind->prepareForSleep(true);
    ASSERT_TRUE(runUntil(loop, [&] { return sleeps == round; }));
    hold.reset();
    logind->prepareForSleep(false);
    ASSERT_TRUE(runUntil(loop, [&] { return wakes == round && logind->isHeld(); }));
    EXPECT_EQ(logind->locks.size(), static_cast<std::size_t>(round + 1));
  }
}

TEST_F(LogindSleep, ReportsEachSleepAndEachWakeOnce) {
  startAndConnect();
  logind->prepareForSleep(false);  // a wake that nothing went before
  logind->prepareForSleep(true);
  logind->prepareForSleep(true);
  logind->prepareForSleep(false);
  logind->prepareForSleep(false);
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 2; }));
  EXPECT_EQ(wakes, 1);
}

TEST_F(LogindSleep, ReportsTheSleepWithoutAHoldWhereTheLockIsRefused) {
  startLogind();
  logind->refuses = true;
  connect();
  ASSERT_TRUE(runUntil(loop, [&] { return logind->locks.size() == 1; }));
  hold = std::make_shared<int>(0);
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 1; }));
  EXPECT_EQ(hold, nullptr);
  logind->prepareForSleep(false);
  ASSERT_TRUE(runUntil(loop, [&] { return wakes == 1; }));
}

TEST_F(LogindSleep, FindsALogindThatComesLater) {
  connect();
  startLogind();
  ASSERT_TRUE(runUntil(loop, [&] { return logind->isHeld(); }));
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 1; }));
  EXPECT_NE(hold, nullptr);
}

TEST_F(LogindSleep, TakesANewLockFromALogindThatRestarts) {
  startAndConnect();
  logind->leave();
  ASSERT_TRUE(runUntil(loop, [&] { return !logind->isHeld(); }));
  logind->comeBack();
  ASSERT_TRUE(runUntil(loop, [&] { return logind->isHeld(); }));
  EXPECT_EQ(logind->locks.size(), 2U);
}

TEST_F(LogindSleep, WakesWhenLogindEndsInTheMeantime) {
  startAndConnect();
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 1; }));
  logind->leave();
  ASSERT_TRUE(runUntil(loop, [&] { return wakes == 1; }));
}

TEST_F(LogindSleep, WakesWhenTheBusIsLostInTheMeantime) {
  startAndConnect();
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 1; }));
  logind.reset();
  daemon.stop();
  ASSERT_TRUE(runUntil(loop, [&] { return wakes == 1; }));
}

TEST_F(LogindSleep, ListensAgainOnABusThatComesBack) {
  startAndConnect();
  logind.reset();
  daemon.stop();
  ASSERT_TRUE(runUntil(loop, [&] { return connection.bus() == nullptr; }));
  daemon.start();
  startLogind();
  ASSERT_TRUE(runUntil(loop, [&] { return logind->isHeld(); }));
  logind->prepareForSleep(true);
  ASSERT_TRUE(runUntil(loop, [&] { return sleeps == 1; }));
}

}  // namespace
}  // namespace vantora
