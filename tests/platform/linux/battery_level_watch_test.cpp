// SPDX-License-Identifier: MIT
#include "platform/linux/battery_level_watch.hpp"

#include <gtest/gtest.h>

#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

class BatteryLevelWatch : public testing::Test {
 protected:
  test::VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  test::SysfsTree tree{"thinkpad-t440s"};
  int changes = 0;
  vantora::BatteryLevelWatch watch{*queue, tree.powerSupply(), [this] { ++changes; }};
};

TEST_F(BatteryLevelWatch, TellsANewLevelWithinAMinute) {
  watch.refresh();
  EXPECT_EQ(queue->lastLeeway(), Seconds{10});
  tree.write("power_supply/BAT1/capacity", "58\n");
  time.advance(Seconds{59.999});
  EXPECT_EQ(changes, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(changes, 1);
}

TEST_F(BatteryLevelWatch, SaysNothingWhileTheLevelStays) {
  watch.refresh();
  tree.write("power_supply/BAT1/voltage_now", "11000000\n");
  time.advance(Seconds{600});
  EXPECT_EQ(changes, 0);
}

TEST_F(BatteryLevelWatch, DoesNotTellAgainWhatARefreshHasSeen) {
  watch.refresh();
  tree.write("power_supply/BAT1/capacity", "58\n");
  watch.refresh();
  time.advance(Seconds{60});
  EXPECT_EQ(changes, 0);
}

TEST_F(BatteryLevelWatch, NeverWakesAMachineWithoutABattery) {
  tree.remove("power_supply");
  tree.remove("hwmon");
  watch.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
  tree.load("desktop-ryzen-5900x");  // the battery of a mouse
  watch.refresh();
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(BatteryLevelWatch, StopsWithTheLastBatteryAndStartsWithTheNext) {
  watch.refresh();
  tree.remove("hwmon");
  tree.remove("power_supply/BAT0");
  tree.remove("power_supply/BAT1");
  time.advance(Seconds{60});
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(time.pendingCount(), 0U);
  tree.load("dell-xps-13-9370");
  watch.refresh();
  EXPECT_EQ(time.pendingCount(), 1U);
}

}  // namespace
}  // namespace vantora
