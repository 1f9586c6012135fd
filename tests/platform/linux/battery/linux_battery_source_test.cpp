// SPDX-License-Identifier: MIT
#include "platform/linux/battery/linux_battery_source.hpp"

#include <gtest/gtest.h>

#include "platform/linux/battery/linux_battery_source_fixture.hpp"

namespace vantora {
namespace {

using test::noAdapter;
using test::noBattery;
using test::noEstimate;
using LinuxBatterySource = test::LinuxBatterySourceFixture;

TEST_F(LinuxBatterySource, CountsTheTwoBatteriesOfAThinkPadAsOne) {
  const BatteryReadings readings = readMachine("thinkpad-t440s");
  EXPECT_EQ(readings.percentage,
            valid((19.46e6 + 11.98e6) * 100 / (19.85e6 + 20.15e6),
                  "Linux power_supply · 2 baterias internas · energia atual/máxima"));
  // Both are emptied, at the rate of the one that serves.
  EXPECT_NEAR(readings.duration.value.value(), (19.46 + 11.98) / 7.862 * 60, 1e-6);
  EXPECT_EQ(readings.duration.source, "Linux power_supply · estimativa pela potência consumida");
  EXPECT_FALSE(readings.onAC);
  EXPECT_FALSE(readings.charging);
  EXPECT_EQ(readings.adapterWatts, noAdapter);
}

TEST_F(LinuxBatterySource, ReadsAnXpsThatChargesOverUsbC) {
  const BatteryReadings readings = readMachine("dell-xps-13-9370");
  EXPECT_EQ(readings.percentage,
            valid(70, "Linux power_supply · bateria interna · carga atual/máxima"));
  EXPECT_NEAR(readings.duration.value.value(), (6080.0 - 4256.0) / 2280.0 * 60, 1e-6);
  EXPECT_EQ(readings.duration.source, "Linux power_supply · estimativa pela potência de carga");
  EXPECT_TRUE(readings.onAC);
  EXPECT_TRUE(readings.charging);
  EXPECT_EQ(readings.adapterWatts,
            valid(45, "Linux power_supply · potência máxima informada do adaptador"));
}

TEST_F(LinuxBatterySource, HasNoEstimateForAFrameworkThatIsFull) {
  const BatteryReadings readings = readMachine("framework-13-amd");
  EXPECT_EQ(readings.percentage.value, 100);
  EXPECT_EQ(readings.duration, noEstimate);
  EXPECT_TRUE(readings.onAC);
  EXPECT_FALSE(readings.charging);
  EXPECT_EQ(readings.adapterWatts.value, 60);
}

TEST_F(LinuxBatterySource, TakesTheDriversEstimateOnAMacBook) {
  const BatteryReadings readings = readMachine("macbook-air-m2-asahi");
  EXPECT_EQ(readings.percentage,
            valid(3684.0e3 * 100 / 4471.0e3,
                  "Linux power_supply · bateria interna · carga atual/máxima"));
  EXPECT_EQ(readings.duration,
            valid(529,
                  "Linux power_supply · estimativa em minutos fornecida pelo driver da "
                  "bateria"));
  EXPECT_FALSE(readings.onAC);
}

TEST_F(LinuxBatterySource, HoldsAMacBookProThatDoesNotCharge) {
  const BatteryReadings readings = readMachine("macbook-pro-2015");
  EXPECT_EQ(readings.percentage.value, 80);
  EXPECT_TRUE(readings.onAC);
  EXPECT_FALSE(readings.charging);
  EXPECT_EQ(readings.duration, noEstimate);
  EXPECT_EQ(readings.adapterWatts, noAdapter);
}

TEST_F(LinuxBatterySource, NeverTakesTheBatteryOfAMouseForTheMachines) {
  EXPECT_EQ(readMachine("desktop-ryzen-5900x"), BatteryReadings());
}

TEST_F(LinuxBatterySource, KeepsTheDefaultsOnAMachineWithoutPowerSupplies) {
  EXPECT_EQ(readMachine("raspberry-pi-4"), BatteryReadings());
  EXPECT_EQ(vantora::LinuxBatterySource(time, tree.path("nowhere")).read(), BatteryReadings());
}

TEST_F(LinuxBatterySource, TakesNoUpsForABattery) {
  EXPECT_EQ(readMachine("server-with-ups"), BatteryReadings());
}

TEST_F(LinuxBatterySource, ReadsTheMachinesBatteryBesideThatOfAMouse) {
  addBattery();
  add("[power_supply/hid-mouse]\ntype=Battery\nscope=Device\nstatus=Charging\ncapacity=5\n");
  const BatteryReadings readings = read();
  EXPECT_EQ(readings.percentage.value, 80);
  EXPECT_FALSE(readings.charging);
}

TEST_F(LinuxBatterySource, IgnoresASupplyThatCannotBeRead) {
  addBattery();
  tree.putFolder("power_supply/empty");
  tree.putPipe("power_supply/pipe");
  tree.write("power_supply/file", "Battery\n");
  add("[power_supply/odd]\nstatus=Charging\ncapacity=1\n");
  EXPECT_EQ(read().percentage.value, 80);
}

TEST_F(LinuxBatterySource, SurvivesPipesAndFoldersInPlaceOfAttributes) {
  for (const char* attribute : {"status", "present", "energy_now", "energy_full", "power_now",
                                "voltage_min_design", "capacity", "scope", "time_to_empty_now"}) {
    addBattery();
    tree.putPipe(std::string("power_supply/BAT0/") + attribute);
    (void)read();
    tree.putFolder(std::string("power_supply/BAT0/") + attribute);
    EXPECT_NE(read().percentage, noBattery) << attribute;
    tree.remove("power_supply/BAT0");
  }
}

TEST_F(LinuxBatterySource, SeesABatteryThatIsPulledOutAndPutBack) {
  addBattery();
  vantora::LinuxBatterySource source(time, tree.powerSupply());
  EXPECT_EQ(source.read().percentage.value, 80);
  tree.remove("power_supply/BAT0");
  EXPECT_EQ(source.read(), BatteryReadings());
  addBattery();
  set("energy_now", "10000000");
  set("capacity", "20");
  EXPECT_EQ(source.read().percentage.value, 20);
}

}  // namespace
}  // namespace vantora
