// SPDX-License-Identifier: MIT
#include "platform/linux/power/battery_reminder.hpp"

#include <gtest/gtest.h>

#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

class BatteryReminder : public testing::Test {
 protected:
  test::VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  test::SysfsTree tree{"thinkpad-t440s"};
  int calls = 0;
  vantora::BatteryReminder reminder{*queue, tree.powerSupply(), [this] { ++calls; }};
};

TEST_F(BatteryReminder, CallsOnceAMinuteWhileThereIsABattery) {
  reminder.refresh();
  EXPECT_EQ(queue->lastLeeway(), Seconds{10});
  time.advance(Seconds{59.999});
  EXPECT_EQ(calls, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(calls, 1);
  time.advance(Seconds{600});
  EXPECT_EQ(calls, 11);
}

TEST_F(BatteryReminder, KeepsItsMinuteWhenTheKernelAnnouncesAChange) {
  reminder.refresh();
  time.advance(Seconds{50});
  reminder.refresh();
  time.advance(Seconds{10});
  EXPECT_EQ(calls, 1);
}

TEST_F(BatteryReminder, NeverWakesAMachineWithoutABattery) {
  tree.remove("power_supply");
  tree.remove("hwmon");
  reminder.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
  tree.load("desktop-ryzen-5900x");  // the battery of a mouse
  reminder.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(BatteryReminder, StopsWithTheLastBatteryAndStartsWithTheNext) {
  reminder.refresh();
  tree.remove("hwmon");
  tree.remove("power_supply/BAT0");
  tree.remove("power_supply/BAT1");
  reminder.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
  tree.load("dell-xps-13-9370");
  reminder.refresh();
  EXPECT_EQ(time.pendingCount(), 1U);
}

}  // namespace
}  // namespace vantora
