// SPDX-License-Identifier: MIT
//
// What every source of battery and sensor readings owes the sampling coordinator.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/linux/linux_battery_source.hpp"
#include "platform/linux/linux_sensor_source.hpp"
#include "sampling/battery_collector.hpp"
#include "sampling/sensor_collector.hpp"
#include "support/fake_power_sources.hpp"
#include "support/scripted_smc.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

constexpr MetricSet allSensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};

/// What the sources stand on.
struct World {
  test::VirtualTime time;
  test::ScriptedSMC controller;
  test::SysfsTree tree{"dell-xps-13-9370"};
};

void expectHonest(const MetricSample& sample) {
  EXPECT_FALSE(sample.source.empty());
  EXPECT_EQ(sample.value.has_value(), sample.quality == Quality::valid) << sample.source;
  EXPECT_EQ(sample.sampledAt.has_value(), sample.quality == Quality::valid) << sample.source;
}

template <typename Source>
struct Maker {
  std::string name;
  std::function<std::unique_ptr<Source>(World&)> make;
};

template <typename Source>
std::string nameOf(const testing::TestParamInfo<Maker<Source>>& info) {
  return info.param.name;
}

class SensorSourceContract : public testing::TestWithParam<Maker<SensorSource>> {
 protected:
  World world;
  std::unique_ptr<SensorSource> source = GetParam().make(world);
};

TEST_P(SensorSourceContract, HasASampleForEveryDemandedSensorAndForNothingElse) {
  EXPECT_TRUE(source->sample({}).empty());
  EXPECT_TRUE(source
                  ->sample({MetricID::cpuUsage, MetricID::batteryPercent, MetricID::none,
                            MetricID::inputWatts, MetricID::batteryChargeWatts})
                  .empty());
  EXPECT_EQ(source->sample(allSensors).metrics(), allSensors);
  for (const MetricID metric : allSensors) {
    EXPECT_EQ(source->sample({metric, MetricID::upload}).metrics(), MetricSet{metric});
  }
}

TEST_P(SensorSourceContract, HasAValueOrSaysWhyNot) {
  for (int pass = 0; pass < 5; ++pass) {
    const SampleTable samples = source->sample(allSensors);
    for (const MetricID metric : allSensors) {
      expectHonest(*samples.find(metric));
    }
  }
}

TEST_P(SensorSourceContract, MayBeConfiguredAndResetAtAnyTime) {
  source->reset();
  source->configure(allSensors);
  source->configure(allSensors);
  const SampleTable before = source->sample(allSensors);
  source->reset();
  source->reset();
  EXPECT_EQ(source->sample(allSensors), before);
  source->configure({MetricID::cpuUsage});
  EXPECT_EQ(source->sample(allSensors), before);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, SensorSourceContract,
    testing::Values(
        Maker<SensorSource>{"Fake",
                            [](World&) { return std::make_unique<test::FakeSensorSource>(); }},
        Maker<SensorSource>{"ClosedController",
                            [](World& world) {
                              world.controller.refuses = true;
                              return std::make_unique<SensorCollector>(world.controller.opener(),
                                                                       world.time);
                            }},
        Maker<SensorSource>{"OpenController",
                            [](World& world) {
                              world.controller.keys["TB1T"] = test::floatKey(30);
                              world.controller.keys["TB2T"] = test::floatKey(31);
                              world.controller.keys["FNum"] = test::uint8Key(1);
                              world.controller.keys["F0Ac"] = test::floatKey(1500);
                              world.controller.keys["F0Mx"] = test::floatKey(6000);
                              return std::make_unique<SensorCollector>(world.controller.opener(),
                                                                       world.time);
                            }},
        Maker<SensorSource>{"Linux",
                            [](World& world) {
                              return std::make_unique<LinuxSensorSource>(
                                  world.time, LinuxSensorSource::Roots{world.tree.hwmon(),
                                                                       world.tree.powerSupply()});
                            }},
        Maker<SensorSource>{"LinuxWithoutChips",
                            [](World& world) {
                              return std::make_unique<LinuxSensorSource>(
                                  world.time, LinuxSensorSource::Roots{"/nowhere", "/nowhere"});
                            }}),
    nameOf<SensorSource>);

class BatterySourceContract : public testing::TestWithParam<Maker<BatterySource>> {
 protected:
  World world;
  std::unique_ptr<BatterySource> source = GetParam().make(world);
};

TEST_P(BatterySourceContract, HasAValueOrSaysWhyNot) {
  const BatteryReadings readings = source->read();
  expectHonest(readings.percentage);
  expectHonest(readings.duration);
  expectHonest(readings.adapterWatts);
}

TEST_P(BatterySourceContract, ReadsTheSameAgainWhileNothingChanges) {
  EXPECT_EQ(source->read(), source->read());
}

class NoPowerSources final : public PowerSourcePort {
 public:
  std::optional<PowerSourceDescription> adapterDetails() override { return std::nullopt; }
  std::vector<PowerSourceDescription> powerSources() override { return {}; }
};

INSTANTIATE_TEST_SUITE_P(
    Sources, BatterySourceContract,
    testing::Values(
        Maker<BatterySource>{"Fake",
                             [](World&) { return std::make_unique<test::FakeBatterySource>(); }},
        Maker<BatterySource>{"Described",
                             [](World& world) {
                               static NoPowerSources none;
                               return std::make_unique<DescribedBattery>(none, world.time);
                             }},
        Maker<BatterySource>{"Linux",
                             [](World& world) {
                               return std::make_unique<LinuxBatterySource>(
                                   world.time, world.tree.powerSupply());
                             }},
        Maker<BatterySource>{"LinuxWithoutSupplies",
                             [](World& world) {
                               return std::make_unique<LinuxBatterySource>(world.time, "/nowhere");
                             }}),
    nameOf<BatterySource>);

}  // namespace
}  // namespace vantora
