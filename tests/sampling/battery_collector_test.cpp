// SPDX-License-Identifier: MIT
#include "sampling/battery_collector.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using Value = PowerSourceDescription::Value;

std::string text(const char* characters) {
  return characters;
}

class FakePowerSources final : public PowerSourcePort {
 public:
  std::optional<PowerSourceDescription> adapterDetails() override { return adapter; }
  std::vector<PowerSourceDescription> powerSources() override { return sources; }

  std::optional<PowerSourceDescription> adapter;
  std::vector<PowerSourceDescription> sources;
};

class BatteryCollector : public testing::Test {
 protected:
  // A battery that discharges, with one entry replaced or added.
  static PowerSourceDescription battery(const std::string& key = "Type",
                                        const Value& value = text("InternalBattery")) {
    PowerSourceDescription description{{"Type", text("InternalBattery")},
                                       {"Current Capacity", 87.0},
                                       {"Max Capacity", 100.0},
                                       {"Power Source State", text("Battery Power")},
                                       {"Is Charging", false},
                                       {"Time to Empty", 245.0},
                                       {"Time to Full Charge", 31.0}};
    description.set(key, value);
    return description;
  }

  BatteryReadings read() { return vantora::BatteryCollector::read(port, time.now()); }
  BatteryReadings readBattery(const std::string& key, const Value& value) {
    port.sources = {battery(key, value)};
    return read();
  }

  test::VirtualTime time;
  FakePowerSources port;
};

const MetricSample noBattery = MetricSample::unavailable("Bateria interna indisponível");
const MetricSample noEstimate = MetricSample::unavailable("Estimativa indisponível");
const MetricSample noAdapter = MetricSample::unavailable("Adaptador sem potência informada");

TEST_F(BatteryCollector, StartsFromDefaultsThatSayWhatIsMissing) {
  const BatteryReadings readings;
  EXPECT_EQ(readings.percentage, noBattery);
  EXPECT_EQ(readings.duration, noEstimate);
  EXPECT_EQ(readings.adapterWatts, noAdapter);
  EXPECT_FALSE(readings.onAC);
  EXPECT_FALSE(readings.charging);
}

TEST_F(BatteryCollector, KeepsTheDefaultsOnAMachineWithoutPowerSources) {
  EXPECT_EQ(read(), BatteryReadings());
}

TEST_F(BatteryCollector, ReportsTheAdapterOfAMachineWithoutABattery) {
  port.adapter = PowerSourceDescription{{"Watts", 143.0}};
  const BatteryReadings readings = read();
  EXPECT_EQ(
      readings.adapterWatts,
      MetricSample::valid(143, "IOKit · potência nominal informada do adaptador", time.now()));
  EXPECT_EQ(readings.percentage, noBattery);
  EXPECT_EQ(readings.duration, noEstimate);
  EXPECT_FALSE(readings.onAC);
}

TEST_F(BatteryCollector, TakesAnAdapterOfZeroWattsAtItsWord) {
  port.adapter = PowerSourceDescription{{"Watts", 0.0}};
  EXPECT_EQ(read().adapterWatts.value, 0.0);
  EXPECT_EQ(read().adapterWatts.quality, Quality::valid);
}

TEST_F(BatteryCollector, IgnoresAdapterWattsThatAreNegativeMissingOrNoNumber) {
  for (const Value& watts : {Value(-1.0), Value(text("96")), Value(true), Value(std::nan(""))}) {
    port.adapter = PowerSourceDescription{{"Watts", watts}};
    EXPECT_EQ(read().adapterWatts, noAdapter);
  }
  port.adapter = PowerSourceDescription{{"Current", 5000.0}};
  EXPECT_EQ(read().adapterWatts, noAdapter);
}

TEST_F(BatteryCollector, ReadsABatteryThatDischarges) {
  port.sources = {battery()};
  const BatteryReadings readings = read();
  EXPECT_EQ(
      readings.percentage,
      MetricSample::valid(87, "IOKit · bateria interna · capacidade atual/máxima", time.now()));
  EXPECT_EQ(
      readings.duration,
      MetricSample::valid(245, "IOKit · estimativa em minutos fornecida pela bateria", time.now()));
  EXPECT_FALSE(readings.onAC);
  EXPECT_FALSE(readings.charging);
}

TEST_F(BatteryCollector, ReadsTheTimeToFullWhileCharging) {
  PowerSourceDescription description = battery("Power Source State", text("AC Power"));
  description.set("Is Charging", true);
  port.sources = {description};
  const BatteryReadings readings = read();
  EXPECT_TRUE(readings.onAC);
  EXPECT_TRUE(readings.charging);
  EXPECT_EQ(readings.duration.value, 31.0);
}

TEST_F(BatteryCollector, HasNoEstimateWhenFullOnTheAdapter) {
  PowerSourceDescription description = battery("Power Source State", text("AC Power"));
  description.set("Current Capacity", 100.0);
  port.sources = {description};
  const BatteryReadings readings = read();
  EXPECT_EQ(readings.percentage.value, 100.0);
  EXPECT_EQ(readings.duration, noEstimate);
  EXPECT_TRUE(readings.onAC);
}

TEST_F(BatteryCollector, SkipsOtherSourcesListedBeforeTheInternalBattery) {
  PowerSourceDescription ups = battery("Type", text("UPS"));
  ups.set("Current Capacity", 12.0);
  port.sources = {ups, PowerSourceDescription{}, battery()};
  EXPECT_EQ(read().percentage.value, 87.0);
}

TEST_F(BatteryCollector, TakesTheFirstInternalBatteryEvenWhenItSaysNothing) {
  port.sources = {PowerSourceDescription{{"Type", text("InternalBattery")}}, battery()};
  EXPECT_EQ(read(), BatteryReadings());
}

TEST_F(BatteryCollector, SkipsASourceWhoseTypeIsNoText) {
  EXPECT_EQ(readBattery("Type", 1.0), BatteryReadings());
}

TEST_F(BatteryCollector, DividesCurrentByMaximumCapacity) {
  PowerSourceDescription description = battery("Max Capacity", 6068.0);
  description.set("Current Capacity", 3034.0);
  port.sources = {description};
  EXPECT_EQ(read().percentage.value, 50.0);
}

TEST_F(BatteryCollector, AcceptsAPercentageFromZeroToAHundredInclusive) {
  EXPECT_EQ(readBattery("Current Capacity", 0.0).percentage.value, 0.0);
  EXPECT_EQ(readBattery("Current Capacity", 100.0).percentage.value, 100.0);
}

TEST_F(BatteryCollector, RefusesAPercentageOutsideOfItsRange) {
  EXPECT_EQ(readBattery("Current Capacity", 100.5).percentage, noBattery);
  EXPECT_EQ(readBattery("Current Capacity", -0.5).percentage, noBattery);
  EXPECT_EQ(readBattery("Current Capacity", std::nan("")).percentage, noBattery);
  EXPECT_EQ(readBattery("Max Capacity", 0.0).percentage, noBattery);
  EXPECT_EQ(readBattery("Max Capacity", -100.0).percentage, noBattery);
  EXPECT_EQ(readBattery("Max Capacity", text("100")).percentage, noBattery);
  EXPECT_EQ(readBattery("Current Capacity", true).percentage, noBattery);
}

TEST_F(BatteryCollector, ReadsTheRestOfABatteryWithoutAPercentage) {
  const BatteryReadings readings = readBattery("Max Capacity", 0.0);
  EXPECT_EQ(readings.duration.value, 245.0);
}

TEST_F(BatteryCollector, IsOnTheAdapterOnlyWhenTheStateSaysExactlySo) {
  EXPECT_TRUE(readBattery("Power Source State", text("AC Power")).onAC);
  EXPECT_FALSE(readBattery("Power Source State", text("ac power")).onAC);
  EXPECT_FALSE(readBattery("Power Source State", text("Off Line")).onAC);
  EXPECT_FALSE(readBattery("Power Source State", 1.0).onAC);
}

TEST_F(BatteryCollector, IsChargingOnlyWhenTheFlagSaysSo) {
  EXPECT_TRUE(readBattery("Is Charging", true).charging);
  EXPECT_FALSE(readBattery("Is Charging", 1.0).charging);
  EXPECT_FALSE(readBattery("Is Charging", text("true")).charging);
}

TEST_F(BatteryCollector, AcceptsMinutesFromZeroToJustBelowTenThousand) {
  EXPECT_EQ(readBattery("Time to Empty", 0.0).duration.value, 0.0);
  EXPECT_EQ(readBattery("Time to Empty", 9999.0).duration.value, 9999.0);
  // Whole minutes decide.
  EXPECT_EQ(readBattery("Time to Empty", 9999.9).duration.value, 9999.0);
  EXPECT_EQ(readBattery("Time to Empty", -0.9).duration.value, 0.0);
  EXPECT_FALSE(std::signbit(*readBattery("Time to Empty", -0.9).duration.value));
}

TEST_F(BatteryCollector, HasNoEstimateWhileTheSystemIsCalculating) {
  EXPECT_EQ(readBattery("Time to Empty", -1.0).duration, noEstimate);
}

TEST_F(BatteryCollector, RefusesMinutesOutsideOfTheirRange) {
  EXPECT_EQ(readBattery("Time to Empty", 10000.0).duration, noEstimate);
  EXPECT_EQ(readBattery("Time to Empty", 65535.0).duration, noEstimate);
  EXPECT_EQ(readBattery("Time to Empty", std::nan("")).duration, noEstimate);
  EXPECT_EQ(readBattery("Time to Empty", std::numeric_limits<double>::infinity()).duration,
            noEstimate);
  EXPECT_EQ(readBattery("Time to Empty", text("245")).duration, noEstimate);
}

TEST_F(BatteryCollector, DatesItsReadingsByTheClock) {
  port.sources = {battery()};
  DescribedBattery source(port, time);
  time.advance(Seconds{90});
  EXPECT_EQ(source.read().percentage.sampledAt, time.now());
}

}  // namespace
}  // namespace vantora
