// SPDX-License-Identifier: MIT
#pragma once

#include "sampling/battery_source.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora::test {

/// A battery that answers what a test set, and counts how often it was asked.
class FakeBatterySource final : public BatterySource {
 public:
  [[nodiscard]] BatteryReadings read() override {
    ++reads;
    return readings;
  }

  BatteryReadings readings;
  int reads = 0;
};

/// Sensors that answer what a test set; every other demanded one is unavailable.
class FakeSensorSource final : public SensorSource {
 public:
  void configure(MetricSet demand) override { lastDemand = demand; }
  [[nodiscard]] SampleTable sample(MetricSet demand) override {
    const MetricSet wanted = metricsOfFamily(demand, MetricFamily::sensors);
    SampleTable table;
    for (const MetricID metric : wanted) {
      const MetricSample* prepared = samples.find(metric);
      table.set(metric, prepared != nullptr ? *prepared
                                            : MetricSample::unavailable("Sensor de teste ausente"));
    }
    reads += wanted.empty() ? 0 : 1;
    return table;
  }
  void reset() override { ++resets; }

  SampleTable samples;
  MetricSet lastDemand;
  int reads = 0;
  int resets = 0;
};

}  // namespace vantora::test
