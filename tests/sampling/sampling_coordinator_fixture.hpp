// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "sampling/sampling_coordinator.hpp"
#include "support/fake_network_source.hpp"
#include "support/fake_tick_counters.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

class FakeBatterySource final : public BatterySource {
 public:
  BatteryReadings next;
  int reads = 0;
  [[nodiscard]] BatteryReadings read() override {
    ++reads;
    return next;
  }
};

class FakeSensorSource final : public SensorSource {
 public:
  double celsius = 40;
  std::vector<MetricSet> configured;
  int samples = 0;
  int resets = 0;

  void configure(MetricSet demand) override { configured.push_back(demand); }
  [[nodiscard]] SampleTable sample(MetricSet demand) override {
    ++samples;
    SampleTable table;
    for (const MetricID metric : metricsOfFamily(demand, MetricFamily::sensors)) {
      table.set(metric, MetricSample::valid(celsius, "sensor", {}));
    }
    return table;
  }
  void reset() override { ++resets; }
};

inline ModuleConfiguration moduleOf(MetricID top, MetricID bottom = MetricID::none) {
  ModuleConfiguration result;
  result.top = top;
  result.bottom = bottom;
  return result;
}

inline AppConfiguration showing(std::vector<ModuleConfiguration> modules) {
  AppConfiguration configuration;
  configuration.modules = std::move(modules);
  return configuration;
}

inline AppConfiguration showing(MetricID metric) {
  return showing({moduleOf(metric)});
}

/// A coordinator over fakes; what it publishes is kept in order.
class SamplingCoordinatorTest : public testing::Test {
 protected:
  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  std::unique_ptr<VirtualQueue> main_ = time_.makeQueue();
  FakeTickCounters* ticks_ = nullptr;
  FakeNetworkSource* network_ = nullptr;
  FakeBatterySource* battery_ = nullptr;
  FakeSensorSource* sensors_ = nullptr;
  std::vector<MetricSnapshot> published_;
  std::shared_ptr<SamplingCoordinator> coordinator_;

  SamplingCoordinatorTest() {
    auto ticks = std::make_unique<FakeTickCounters>();
    auto network = std::make_unique<FakeNetworkSource>();
    auto battery = std::make_unique<FakeBatterySource>();
    auto sensors = std::make_unique<FakeSensorSource>();
    ticks_ = ticks.get();
    network_ = network.get();
    battery_ = battery.get();
    sensors_ = sensors.get();
    network_->add("en0");
    network_->add("en1");
    coordinator_ = SamplingCoordinator::create(
        *queue_, *main_, time_,
        {std::move(ticks), std::move(network), std::move(battery), std::move(sensors)});
    coordinator_->onSnapshot = [this](MetricSnapshot snapshot) {
      published_.push_back(std::move(snapshot));
    };
  }

  void configure(const AppConfiguration& configuration) {
    coordinator_->configure(configuration);
    time_.runPosted();
  }
  void sleep() {
    coordinator_->prepareForSleep();
    time_.runPosted();
  }
  void wake() {
    coordinator_->resetAfterWake();
    time_.runPosted();
  }
  [[nodiscard]] const MetricSnapshot& last() const { return published_.back(); }
  [[nodiscard]] Quality quality(MetricID metric) const { return last()[metric].quality; }
};

}  // namespace vantora::test
