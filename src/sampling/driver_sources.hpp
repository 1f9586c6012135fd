// SPDX-License-Identifier: MIT
//
// Battery and sensors behind drivers that may block: the same ports, with a bound on how long
// a pass waits. A driver that hangs costs its own readings and no others.
#pragma once

#include <memory>
#include <string>

#include "sampling/battery_source.hpp"
#include "sampling/driver_answer.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora {

class DriverBattery final : public BatterySource {
 public:
  /// `overdue` is the source text, in Portuguese, while no answer comes. `calls` and `clock` must
  /// outlive the object.
  DriverBattery(std::shared_ptr<BatterySource> source, DriverCalls& calls, const Clock& clock,
                std::string overdue);

  void refresh(TaskQueue::Task&& done) override;
  [[nodiscard]] BatteryReadings read() override;

 private:
  const std::shared_ptr<BatterySource> source_;  // shared with a read under way
  const std::string overdue_;
  DriverAnswer<BatteryReadings> answer_;
};

class DriverSensors final : public SensorSource {
 public:
  /// As DriverBattery's.
  DriverSensors(std::shared_ptr<SensorSource> source, DriverCalls& calls, const Clock& clock,
                std::string overdue);

  void configure(MetricSet demand) override;
  void refresh(MetricSet demand, TaskQueue::Task&& done) override;
  [[nodiscard]] SampleTable sample(MetricSet demand) override;
  void reset() override;

 private:
  const std::shared_ptr<SensorSource> source_;  // shared with a read under way
  const std::string overdue_;
  DriverAnswer<SampleTable> answer_;
};

}  // namespace vantora
