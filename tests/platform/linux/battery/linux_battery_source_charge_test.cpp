// SPDX-License-Identifier: MIT
#include "platform/linux/battery/linux_battery_source.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/linux/battery/linux_battery_source_fixture.hpp"

namespace vantora {
namespace {

using test::noBattery;
using test::noEstimate;
using test::unreadable;
using LinuxBatterySource = test::LinuxBatterySourceFixture;

TEST_F(LinuxBatterySource, FallsBackToTheCapacity) {
  addBattery();
  removeAttribute("energy_now");
  EXPECT_EQ(read().percentage,
            valid(79, "Linux power_supply · bateria interna · capacidade informada"));
}

TEST_F(LinuxBatterySource, FallsBackToTheCapacityWhereTheChargeIsImpossible) {
  addBattery();
  for (const auto& [attribute, value] :
       std::vector<std::pair<std::string, std::string>>{{"energy_full", "0"},
                                                        {"energy_full", "-50000000"},
                                                        {"energy_full", "abc"},
                                                        {"energy_full", ""},
                                                        {"energy_full", "99999999999999999999"},
                                                        {"energy_now", "-1"},
                                                        {"energy_now", "55000001"},
                                                        {"energy_now", "4000x"}}) {
    addBattery();
    set(attribute, value);
    EXPECT_EQ(read().percentage.value, 79) << attribute << " " << value;
  }
}

TEST_F(LinuxBatterySource, AcceptsAnEmptyAndAFullBattery) {
  addBattery();
  removeAttribute("capacity");
  set("energy_now", "0");
  EXPECT_EQ(read().percentage.value, 0);
  set("energy_now", "50000000");
  EXPECT_EQ(read().percentage.value, 100);
}

TEST_F(LinuxBatterySource, TakesABatteryThatHoldsSomewhatMoreThanFullForFull) {
  addBattery();
  removeAttribute("capacity");
  set("energy_now", "55000000");
  EXPECT_EQ(read().percentage.value, 100);
  set("energy_now", "55000001");
  EXPECT_EQ(read().percentage, unreadable);
  set("capacity", "110");
  EXPECT_EQ(read().percentage,
            valid(100, "Linux power_supply · bateria interna · capacidade informada"));
}

TEST_F(LinuxBatterySource, BelievesTheCapacityWhereTheCountersAreFarFromIt) {
  addBattery();
  set("capacity", "60");
  EXPECT_EQ(read().percentage.value, 80);
  for (const char* capacity : {"59", "0"}) {
    set("capacity", capacity);
    EXPECT_EQ(read().percentage, valid(std::stod(capacity),
                                       "Linux power_supply · bateria interna · capacidade "
                                       "informada (os contadores de carga divergem)"));
    EXPECT_EQ(read().duration, noEstimate);
  }
  // A capacity that cannot be contradicts nothing.
  for (const char* capacity : {"-1", "111", "abc"}) {
    set("capacity", capacity);
    EXPECT_EQ(read().percentage.value, 80) << capacity;
  }
}

TEST_F(LinuxBatterySource, BelievesTheCapacitiesOfAllBatteriesWhereOneCountsWrong) {
  addBattery("BAT0");
  addBattery("BAT1");
  tree.write("power_supply/BAT1/energy_now", "1000000\n");
  EXPECT_EQ(read().percentage, valid(79,
                                     "Linux power_supply · 2 baterias internas · capacidade "
                                     "informada (os contadores de carga divergem)"));
}

TEST_F(LinuxBatterySource, ReportsAMissingCharge) {
  addBattery();
  removeAttribute("energy_now");
  for (const char* capacity : {"111", "-1", "", "viele", "99999999999999999999"}) {
    set("capacity", capacity);
    EXPECT_EQ(read().percentage, unreadable) << capacity;
  }
  removeAttribute("capacity");
  EXPECT_EQ(read().percentage, unreadable);
}

TEST_F(LinuxBatterySource, ConvertsChargeToEnergyWhereTheBatteriesDiffer) {
  addBattery("BAT0");
  add("[power_supply/BAT1]\ntype=Battery\nstatus=Discharging\nvoltage_min_design=10000000\n"
      "current_now=-1000000\ncharge_full=5000000\ncharge_now=1000000\ncapacity=20\n");
  const BatteryReadings readings = read();
  // 40 of 50 Wh and, at 10 V, 10 of 50 Wh; 10 W each.
  EXPECT_EQ(readings.percentage,
            valid(50, "Linux power_supply · 2 baterias internas · energia atual/máxima"));
  EXPECT_NEAR(readings.duration.value.value(), 150, 1e-9);
}

TEST_F(LinuxBatterySource, TakesTheMeanOfCapacitiesWhereNothingElseIsCommon) {
  addBattery("BAT0");
  add("[power_supply/BAT1]\ntype=Battery\nstatus=Discharging\ncapacity=21\n");
  const BatteryReadings readings = read();
  EXPECT_EQ(readings.percentage,
            valid(50, "Linux power_supply · 2 baterias internas · capacidade informada"));
  EXPECT_EQ(readings.duration, noEstimate);
}

TEST_F(LinuxBatterySource, LeavesOutABatteryWhosePresenceIsEmpty) {
  addBattery();
  set("present", "");
  EXPECT_EQ(read().percentage, noBattery);
}

TEST_F(LinuxBatterySource, LeavesOutABatteryThatIsNotInItsBay) {
  addBattery();
  add("[power_supply/BAT1]\ntype=Battery\npresent=0\nstatus=Charging\ncapacity=1\n");
  const BatteryReadings readings = read();
  EXPECT_EQ(readings.percentage.value, 80);
  EXPECT_FALSE(readings.charging);
}

}  // namespace
}  // namespace vantora
