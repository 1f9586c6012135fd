// SPDX-License-Identifier: MIT
#include "platform/linux/battery/linux_battery_source.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

const MetricSample noBattery = MetricSample::unavailable("Bateria interna indisponível");
const MetricSample noEstimate = MetricSample::unavailable("Estimativa indisponível");
const MetricSample noAdapter = MetricSample::unavailable("Adaptador sem potência informada");
const MetricSample unreadable =
    MetricSample::unavailable("Linux power_supply · carga da bateria interna ilegível");

class LinuxBatterySource : public testing::Test {
 protected:
  BatteryReadings read() { return vantora::LinuxBatterySource(time, tree.powerSupply()).read(); }
  BatteryReadings readMachine(const std::string& machine) {
    test::SysfsTree other(machine);
    return vantora::LinuxBatterySource(time, other.powerSupply()).read();
  }
  void add(const std::string& text) {
    std::istringstream lines(text);
    tree.add(lines);
  }
  // A battery that discharges: 40 of 50 Wh, 10 W.
  void addBattery(const std::string& name = "BAT0") {
    add("[power_supply/" + name +
        "]\ntype=Battery\nstatus=Discharging\npresent=1\nvoltage_min_design=10000000\n"
        "power_now=10000000\nenergy_full=50000000\nenergy_now=40000000\ncapacity=79\n");
  }
  void set(const std::string& attribute, const std::string& value) {
    tree.write("power_supply/BAT0/" + attribute, value + "\n");
  }
  void removeAttribute(const std::string& attribute) {
    tree.remove("power_supply/BAT0/" + attribute);
  }
  MetricSample valid(double value, std::string source) const {
    return MetricSample::valid(value, std::move(source), time.now());
  }

  test::VirtualTime time;
  test::SysfsTree tree;
};

// Machines.

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

// Charge.

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

// Time.

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

// Adapter.

TEST_F(LinuxBatterySource, IsOnTheAdapterWhenAnyAdapterIsOnline) {
  add("[power_supply/AC]\ntype=Mains\nonline=0\n");
  EXPECT_FALSE(read().onAC);
  add("[power_supply/usb]\ntype=USB\nonline=1\n");
  EXPECT_TRUE(read().onAC);
  tree.write("power_supply/usb/online", "2\n");  // programmable supply
  EXPECT_TRUE(read().onAC);
  for (const char* online : {"0\n", "", "-1\n", "yes\n"}) {
    tree.write("power_supply/usb/online", online);
    EXPECT_FALSE(read().onAC) << online;
  }
}

TEST_F(LinuxBatterySource, KnowsTheKindsOfAdapter) {
  for (const char* type : {"Mains", "USB", "USB_PD", "USB_DCP", "Wireless"}) {
    add(std::string("[power_supply/AC]\nonline=1\ntype=") + type + "\n");
    EXPECT_TRUE(read().onAC) << type;
  }
  for (const char* type : {"UPS", "Unknown", "", "mains"}) {
    add(std::string("[power_supply/AC]\nonline=1\ntype=") + type + "\n");
    EXPECT_FALSE(read().onAC) << type;
  }
}

TEST_F(LinuxBatterySource, AsksTheBatteryWhereNoAdapterShowsItself) {
  addBattery();
  EXPECT_FALSE(read().onAC);
  for (const char* status : {"Charging", "Full", "Not charging"}) {
    set("status", status);
    EXPECT_TRUE(read().onAC) << status;
  }
  set("status", "Unknown");
  EXPECT_FALSE(read().onAC);
}

TEST_F(LinuxBatterySource, IsOnTheAdapterWhereTheBatteryIsFullThoughEveryAdapterIsOffline) {
  addBattery();
  add("[power_supply/AC]\ntype=Mains\nonline=0\n");
  EXPECT_FALSE(read().onAC);
  for (const char* status : {"Full", "Charging"}) {
    set("status", status);
    EXPECT_TRUE(read().onAC) << status;
  }
  set("status", "Full");
  EXPECT_EQ(read().duration, noEstimate);
  for (const char* status : {"Not charging", "Unknown"}) {
    set("status", status);
    EXPECT_FALSE(read().onAC) << status;
  }
  // Of two batteries a full one waits while the other serves.
  set("status", "Full");
  addBattery("BAT1");
  EXPECT_FALSE(read().onAC);
}

TEST_F(LinuxBatterySource, RatesAnAdapterByItsDesignVoltageWhereThereIsNoOther) {
  add("[power_supply/CROS_USBPD_CHARGER0]\ntype=USB\nonline=1\ncurrent_max=3000000\n"
      "voltage_max_design=20000000\n");
  EXPECT_EQ(read().adapterWatts,
            valid(60, "Linux power_supply · potência máxima informada do adaptador"));
  tree.write("power_supply/CROS_USBPD_CHARGER0/voltage_max", "0\n");
  EXPECT_EQ(read().adapterWatts.value, 60);
  tree.write("power_supply/CROS_USBPD_CHARGER0/voltage_max", "15000000\n");
  EXPECT_EQ(read().adapterWatts.value, 45);
}

TEST_F(LinuxBatterySource, RatesTheStrongestAdapterThatIsOnline) {
  add("[power_supply/a]\ntype=USB\nonline=1\nvoltage_max=9000000\ncurrent_max=3000000\n"
      "[power_supply/b]\ntype=USB\nonline=1\nvoltage_max=20000000\ncurrent_max=5000000\n"
      "[power_supply/c]\ntype=USB\nonline=0\nvoltage_max=48000000\ncurrent_max=5000000\n"
      "[power_supply/d]\ntype=USB\nscope=Device\nonline=1\nvoltage_max=48000000\n"
      "current_max=5000000\n");
  EXPECT_EQ(read().adapterWatts.value, 100);
}

TEST_F(LinuxBatterySource, NamesAnInputLimitWhatItIs) {
  add("[power_supply/macsmc-ac]\ntype=Mains\nonline=1\ninput_power_limit=30000000\n");
  EXPECT_EQ(read().adapterWatts,
            valid(30, "Linux power_supply · limite de entrada em vigor para o adaptador"));
  add("[power_supply/usb]\ntype=USB\nonline=1\nvoltage_max=20000000\ncurrent_max=1500000\n"
      "input_power_limit=15000000\n");
  EXPECT_EQ(read().adapterWatts.source,
            "Linux power_supply · potência máxima informada do adaptador");
}

TEST_F(LinuxBatterySource, RatesNoAdapterByImpossibleNumbers) {
  for (const char* numbers :
       {"voltage_max=0\ncurrent_max=3000000\n", "voltage_max=20000000\ncurrent_max=-1\n",
        "voltage_max=20000000\ncurrent_max=abc\n", "voltage_max=20000000\n",
        "input_power_limit=0\n", "input_power_limit=-1\n"}) {
    tree.remove("power_supply/usb");
    add(std::string("[power_supply/usb]\ntype=USB\nonline=1\n") + numbers);
    EXPECT_EQ(read().adapterWatts, noAdapter) << numbers;
  }
}

// Broken trees.

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
