// SPDX-License-Identifier: MIT
//
// What every source of battery and sensor readings owes the sampling coordinator. A test of a
// source instantiates the suites with makers of it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "sampling/battery_source.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora::test {

inline constexpr MetricSet allSensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};

/// Makes a source that owns what it works on.
template <typename Source>
struct SourceMaker {
  std::string name;
  std::function<std::shared_ptr<Source>()> make;
};

template <typename Source>
std::string nameOf(const testing::TestParamInfo<SourceMaker<Source>>& info) {
  return info.param.name;
}

inline void expectHonest(const MetricSample& sample) {
  EXPECT_FALSE(sample.source.empty());
  EXPECT_EQ(sample.value.has_value(), sample.quality == Quality::valid) << sample.source;
  EXPECT_EQ(sample.sampledAt.has_value(), sample.quality == Quality::valid) << sample.source;
}

class SensorSourceContract : public testing::TestWithParam<SourceMaker<SensorSource>> {
 protected:
  std::shared_ptr<SensorSource> source = GetParam().make();
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

class BatterySourceContract : public testing::TestWithParam<SourceMaker<BatterySource>> {
 protected:
  std::shared_ptr<BatterySource> source = GetParam().make();
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

}  // namespace vantora::test
