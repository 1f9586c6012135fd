// SPDX-License-Identifier: MIT
//
// Battery and sensors behind drivers that may block: the same ports, with a bound on how long
// a pass waits. A driver that hangs costs its own readings and no others.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sampling/battery_source.hpp"
#include "sampling/bounded_read.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora {

/// Where such a source is read, and what it says meanwhile.
struct DriverPlace {
  WorkThread& thread;  ///< Of this source alone.
  const Clock& clock;  ///< Both must outlive every read.
  /// Whether there is a driver that may block. While there has been none, the source is read
  /// on the sampling queue itself and costs no thread.
  std::function<bool()> hasDrivers;
  std::string overdue;  ///< The source text, in Portuguese, while no answer comes.
  ReadLimits limits{};
};

class DriverBattery final : public BatterySource {
 public:
  DriverBattery(std::shared_ptr<BatterySource> source, DriverPlace place);

  [[nodiscard]] BatteryReadings read() override;

 private:
  const std::shared_ptr<BatterySource> source_;
  const DriverPlace place_;
  BoundedRead<BatteryReadings> boundedRead_;
};

class DriverSensors final : public SensorSource {
 public:
  DriverSensors(std::shared_ptr<SensorSource> source, DriverPlace place);

  void configure(MetricSet demand) override;
  [[nodiscard]] SampleTable sample(MetricSet demand) override;
  void reset() override;

 private:
  void post(WorkThread::Task task);

  const std::shared_ptr<SensorSource> source_;
  const DriverPlace place_;
  BoundedRead<SampleTable> boundedRead_;
};

}  // namespace vantora
