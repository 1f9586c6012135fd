// SPDX-License-Identifier: MIT
#include "sampling/driver_sources.hpp"

#include <utility>

namespace vantora {

DriverBattery::DriverBattery(std::shared_ptr<BatterySource> source, DriverCalls& calls,
                             const Clock& clock, std::string overdue)
    : source_(std::move(source)), overdue_(std::move(overdue)), answer_(calls, clock) {}

void DriverBattery::refresh(TaskQueue::Task&& done) {
  answer_.refresh([source = source_] { return source->read(); }, std::move(done));
}

BatteryReadings DriverBattery::read() {
  return answer_.newest([this](const BatteryReadings* readings) {
    if (readings != nullptr) {
      return *readings;
    }
    BatteryReadings overdue;
    overdue.percentage = overdue.duration = overdue.adapterWatts =
        MetricSample::unavailable(overdue_);
    return overdue;
  });
}

DriverSensors::DriverSensors(std::shared_ptr<SensorSource> source, DriverCalls& calls,
                             const Clock& clock, std::string overdue)
    : source_(std::move(source)), overdue_(std::move(overdue)), answer_(calls, clock) {}

void DriverSensors::configure(MetricSet demand) {
  // Opening waits for the driver as well: it is left to the next refresh().
  if (metricsOfFamily(demand, MetricFamily::sensors).empty()) {
    reset();
  }
}

void DriverSensors::refresh(MetricSet demand, TaskQueue::Task&& done) {
  answer_.refresh([source = source_, demand] { return source->sample(demand); }, std::move(done));
}

SampleTable DriverSensors::sample(MetricSet demand) {
  return answer_.newest([this, demand](const SampleTable* readings) {
    SampleTable samples;
    for (const MetricID metric : metricsOfFamily(demand, MetricFamily::sensors)) {
      // The newest answer may be one for an older demand.
      const MetricSample* sample = readings != nullptr ? readings->find(metric) : nullptr;
      samples.set(metric, sample != nullptr ? *sample : MetricSample::unavailable(overdue_));
    }
    return samples;
  });
}

void DriverSensors::reset() {
  answer_.startOver([source = source_] { source->reset(); });
}

}  // namespace vantora
