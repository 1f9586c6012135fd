// SPDX-License-Identifier: MIT
#include "platform/linux/power/linux_power_events.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/power/scripted_logind.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::runUntil;

TEST(SystemBusAddress, ComesFromTheEnvironmentOrFromItsUsualPlace) {
  EXPECT_EQ(systemBusAddress("unix:path=/x"), "unix:path=/x");
  EXPECT_EQ(systemBusAddress(nullptr), "unix:path=/var/run/dbus/system_bus_socket");
  EXPECT_EQ(systemBusAddress(""), "unix:path=/var/run/dbus/system_bus_socket");
}

TEST(LinuxPowerEvents, ReportsSleepAndWakeFromTheLoop) {
  test::PrivateBus daemon;
  test::SysfsTree tree;
  UvLoop loop;
  test::ScriptedLogind logind(loop.raw(), loop.queue(), daemon.address());
  ASSERT_TRUE(runUntil(loop, [&] { return logind.isReady(); }));
  std::string told;
  LinuxPowerEvents events(loop.raw(), loop.queue(), daemon.address(), tree.powerSupply());
  events.start({[&] { told += "p"; }, [&](SleepHold hold) { told += hold ? "s" : "?"; },
                [&] { told += "w"; }, [] {}});
  EXPECT_EQ(told, "");
  ASSERT_TRUE(runUntil(loop, [&] { return logind.isHeld(); }));
  logind.prepareForSleep(true);
  logind.prepareForSleep(false);
  ASSERT_TRUE(runUntil(loop, [&] { return told == "sw"; }));
}

TEST(LinuxPowerEvents, RemindsOfTheBatteryAlsoWhereNoBusIs) {
  test::VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  test::SysfsTree tree("thinkpad-t440s");
  int changes = 0;
  LinuxPowerEvents events(loop.raw(), *queue, "unix:path=/nowhere/at/all", tree.powerSupply());
  events.start({[] {}, [](const SleepHold&) {}, [] {}, [&] { ++changes; }});
  time.advance(Seconds{60});
  EXPECT_EQ(changes, 1);
}

TEST(LinuxPowerEvents, WaitsForNothingOnAMachineWithoutBatteryAndBus) {
  test::VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  test::SysfsTree tree;
  LinuxPowerEvents events(loop.raw(), *queue, "", tree.powerSupply());
  events.start({[] {}, [](const SleepHold&) {}, [] {}, [] {}});
  EXPECT_EQ(time.pendingCount(), 0U);
}

}  // namespace
}  // namespace vantora
