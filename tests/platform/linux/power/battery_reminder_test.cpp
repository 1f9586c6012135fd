// SPDX-License-Identifier: MIT
#include "platform/linux/power/battery_reminder.hpp"

#include <gtest/gtest.h>

#include "platform/linux/power/counted_calls.hpp"
#include "support/sysfs_tree.hpp"

namespace vantora {
namespace {

class BatteryReminderTest : public test::CountedCalls {
 protected:
  test::SysfsTree tree{"thinkpad-t440s"};
  BatteryReminder reminder{*queue, tree.powerSupply(), call};
};

TEST_F(BatteryReminderTest, CallsOnceAMinuteWhileThereIsABattery) {
  reminder.refresh();
  EXPECT_EQ(queue->lastLeeway(), Seconds{10});
  EXPECT_EQ(callsAfter(Seconds{59.999}), 0);
  EXPECT_EQ(callsAfter(Seconds{0.001}), 1);
  EXPECT_EQ(callsAfter(Seconds{600}), 11);
}

TEST_F(BatteryReminderTest, KeepsItsMinuteWhenTheKernelAnnouncesAChange) {
  reminder.refresh();
  time.advance(Seconds{50});
  reminder.refresh();
  EXPECT_EQ(callsAfter(Seconds{10}), 1);
}

TEST_F(BatteryReminderTest, NeverWakesAMachineWithoutABattery) {
  tree.remove("power_supply");
  tree.remove("hwmon");
  reminder.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
  tree.load("desktop-ryzen-5900x");  // the battery of a mouse
  reminder.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(BatteryReminderTest, StopsWithTheLastBatteryAndStartsWithTheNext) {
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
