// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "platform/linux/sensors/watched_calls.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

inline constexpr MetricSet allSensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};
inline constexpr MetricSet cpu{MetricID::cpuTemperature};
inline constexpr MetricSet battery{MetricID::batteryTemperature};
inline constexpr MetricSet fan1{MetricID::fan1RPM, MetricID::fan1Percent};

inline MetricSample unavailable(std::string source) {
  return MetricSample::unavailable(std::move(source));
}

/// The source on one of the machines that are kept, with every call for a file counted.
class LinuxSensorSourceFixture : public testing::Test {
 protected:
  void useMachine(const std::string& machine) {
    tree = std::make_unique<SysfsTree>(machine);
    source = std::make_unique<LinuxSensorSource>(
        time, LinuxSensorSource::Roots{tree->hwmon(), tree->powerSupply()});
  }
  MetricSample sample(MetricID metric) {
    const SampleTable samples = source->sample({metric});
    EXPECT_EQ(samples.metrics(), MetricSet{metric});
    return samples.find(metric) != nullptr ? *samples.find(metric) : unavailable("no sample");
  }
  MetricSample valid(double value, std::string from) const {
    return MetricSample::valid(value, std::move(from), time.now());
  }
  MetricSample cpuTemperature() { return sample(MetricID::cpuTemperature); }

  VirtualTime time;
  std::unique_ptr<SysfsTree> tree;
  std::unique_ptr<LinuxSensorSource> source;
  WatchedCalls calls;
};

}  // namespace vantora::test
