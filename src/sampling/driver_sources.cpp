// SPDX-License-Identifier: MIT
#include "sampling/driver_sources.hpp"

#include <utility>

namespace vantora {
namespace {

// Once the thread has been started the source belongs to it.
bool isReadInPlace(const DriverPlace& place) {
  return !place.thread.hasStarted() && !place.hasDrivers();
}

}  // namespace

DriverBattery::DriverBattery(std::shared_ptr<BatterySource> source, DriverPlace place)
    : source_(std::move(source)),
      place_(std::move(place)),
      boundedRead_(place_.thread, place_.clock, place_.limits) {}

BatteryReadings DriverBattery::read() {
  if (isReadInPlace(place_)) {
    return source_->read();
  }
  if (auto readings = boundedRead_([source = source_] { return source->read(); })) {
    return *std::move(readings);
  }
  BatteryReadings overdue;
  overdue.percentage = overdue.duration = overdue.adapterWatts =
      MetricSample::unavailable(place_.overdue);
  return overdue;
}

DriverSensors::DriverSensors(std::shared_ptr<SensorSource> source, DriverPlace place)
    : source_(std::move(source)),
      place_(std::move(place)),
      boundedRead_(place_.thread, place_.clock, place_.limits) {}

void DriverSensors::configure(MetricSet demand) {
  boundedRead_.forget();
  if (isReadInPlace(place_)) {
    source_->configure(demand);
  } else if (place_.thread.hasStarted()) {
    post([source = source_, demand] { source->configure(demand); });
  }
  // Otherwise the first sample() opens what it needs.
}

SampleTable DriverSensors::sample(MetricSet demand) {
  if (isReadInPlace(place_)) {
    return source_->sample(demand);
  }
  const auto readings = boundedRead_([source = source_, demand] { return source->sample(demand); });
  SampleTable samples;
  for (const MetricID metric : metricsOfFamily(demand, MetricFamily::sensors)) {
    // The newest answer may be one for an older demand.
    const MetricSample* sample = readings ? readings->find(metric) : nullptr;
    samples.set(metric, sample != nullptr ? *sample : MetricSample::unavailable(place_.overdue));
  }
  return samples;
}

void DriverSensors::reset() {
  boundedRead_.forget();
  if (place_.thread.hasStarted()) {
    post([source = source_] { source->reset(); });
  } else {
    source_->reset();
  }
}

void DriverSensors::post(WorkThread::Task task) {
  // Where there is no thread to be had, the source stays as it was: sample() says so.
  [[maybe_unused]] const bool isTaken = place_.thread.post(std::move(task));
}

}  // namespace vantora
