// SPDX-License-Identifier: MIT
#include "platform/linux/battery/linux_battery_source.hpp"

#include <gtest/gtest.h>

#include "platform/linux/battery/linux_battery_source_fixture.hpp"

namespace vantora {
namespace {

using test::noEstimate;
using LinuxBatterySource = test::LinuxBatterySourceFixture;

TEST_F(LinuxBatterySource, EstimatesTheTimeFromThePowerDrawn) {
  addBattery();
  EXPECT_EQ(read().duration, valid(240, "Linux power_supply · estimativa pela potência consumida"));
}

TEST_F(LinuxBatterySource, DoesNotCareAboutTheSignOfPowerAndCurrent) {
  addBattery();
  set("power_now", "-10000000");
  EXPECT_EQ(read().duration.value, 240);
  removeAttribute("power_now");
  set("current_now", "-1000000");
  EXPECT_EQ(read().duration.value, 240);
  set("current_now", "1000000");
  EXPECT_EQ(read().duration.value, 240);
}

TEST_F(LinuxBatterySource, UsesAveragesWhereThereIsNoMomentaryValue) {
  addBattery();
  removeAttribute("power_now");
  set("power_avg", "20000000");
  EXPECT_EQ(read().duration.value, 120);
}

TEST_F(LinuxBatterySource, TakesThePresentVoltageWhereTheDesignIsUnknown) {
  addBattery();
  removeAttribute("power_now");
  set("voltage_min_design", "0");
  set("voltage_now", "20000000");
  set("current_now", "1000000");
  EXPECT_EQ(read().duration.value, 120);
}

TEST_F(LinuxBatterySource, HasNoEstimateWithoutABelievableFlow) {
  addBattery();
  for (const char* power : {"0", "abc", "", "99999999999999999999", "1"}) {
    set("power_now", power);  // 1 µW: a battery for 4,500 years
    EXPECT_EQ(read().duration, noEstimate) << power;
  }
}

TEST_F(LinuxBatterySource, PrefersTheDriversEstimate) {
  addBattery();
  set("time_to_empty_now", "5430");
  EXPECT_EQ(read().duration.value, 90.5);
  removeAttribute("time_to_empty_now");
  set("time_to_empty_avg", "3600");
  EXPECT_EQ(read().duration.value, 60);
}

TEST_F(LinuxBatterySource, DoesNotBelieveADriversEstimateThatSaysNothing) {
  addBattery();
  // 0 and 65535 minutes stand for "not known"; 10,000 minutes are a week.
  for (const char* seconds : {"0", "-60", "3932100", "600000", "abc", ""}) {
    set("time_to_empty_now", seconds);
    EXPECT_EQ(read().duration.value, 240) << seconds;
  }
  set("time_to_empty_now", "599940");
  EXPECT_EQ(read().duration.value, 9999);
}

TEST_F(LinuxBatterySource, ReadsTheTimeToFullWhileCharging) {
  addBattery();
  set("status", "Charging");
  EXPECT_EQ(read().duration, valid(60, "Linux power_supply · estimativa pela potência de carga"));
  set("time_to_full_now", "1800");
  set("time_to_empty_now", "60");
  EXPECT_EQ(read().duration.value, 30);
}

TEST_F(LinuxBatterySource, ReadsTheTimeToTheLimitThatChargingEndsAt) {
  addBattery();
  set("status", "Charging");
  set("charge_control_end_threshold", "90");
  EXPECT_EQ(read().duration, valid(30, "Linux power_supply · estimativa pela potência de carga"));
  // The driver's estimate goes to full.
  set("time_to_full_now", "3600");
  EXPECT_EQ(read().duration.value, 30);
  for (const char* limit : {"80", "70"}) {
    set("charge_control_end_threshold", limit);
    EXPECT_EQ(read().duration, noEstimate) << limit;
  }
  for (const char* limit : {"100", "0", "-1", "101", "abc"}) {
    set("charge_control_end_threshold", limit);
    EXPECT_EQ(read().duration.value, 60) << limit;
  }
}

TEST_F(LinuxBatterySource, LimitsOnlyTheBatteryThatHasALimit) {
  addBattery("BAT0");
  addBattery("BAT1");
  set("status", "Charging");
  tree.write("power_supply/BAT1/status", "Charging\n");
  set("charge_control_end_threshold", "90");
  EXPECT_EQ(read().duration.value, 45);  // 5 and 10 Wh are missing, 20 W go in
}

TEST_F(LinuxBatterySource, TakesNoNoticeOfTheLimitWhileDischarging) {
  addBattery();
  set("charge_control_end_threshold", "60");
  EXPECT_EQ(read().duration.value, 240);
}

TEST_F(LinuxBatterySource, CountsOnlyTheBatteryThatCharges) {
  addBattery("BAT0");
  addBattery("BAT1");
  set("status", "Charging");
  tree.write("power_supply/BAT1/status", "Unknown\n");
  tree.write("power_supply/BAT1/power_now", "3000000\n");
  EXPECT_EQ(read().duration.value, 120);  // 20 Wh are missing, 10 W go in
}

TEST_F(LinuxBatterySource, HasNoEstimateOnTheAdapterWithoutCharging) {
  addBattery();
  add("[power_supply/AC]\ntype=Mains\nonline=1\n");
  set("time_to_empty_now", "5430");
  EXPECT_EQ(read().duration, noEstimate);  // a weak adapter: the status says "Discharging"
  EXPECT_TRUE(read().onAC);
}

}  // namespace
}  // namespace vantora
