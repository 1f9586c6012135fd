// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/sensors/linux_fans.hpp"
#include "platform/linux/sensors/linux_temperature.hpp"
#include "runtime/clock.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora {

/// Temperatures and fans from hwmon chips and power supplies. CPU, battery and fans are three
/// groups that open, fail and rest on their own: a pass costs one system call for every value
/// of the demanded groups, and nothing for the others.
///
/// A group whose device is gone is looked up anew at once; one that is absent, or failed in
/// three passes in a row, after 60 s. Every 60 s the chips are listed, and when they are not
/// the same ones, everything is looked up anew. Used on the sampling queue only.
class LinuxSensorSource final : public SensorSource {
 public:
  struct Roots {
    std::string hwmon = "/sys/class/hwmon";
    std::string powerSupply = "/sys/class/power_supply";
  };

  /// `clock` must outlive the source.
  explicit LinuxSensorSource(const Clock& clock) : LinuxSensorSource(clock, Roots()) {}
  LinuxSensorSource(const Clock& clock, Roots roots);
  LinuxSensorSource(const LinuxSensorSource&) = delete;
  LinuxSensorSource& operator=(const LinuxSensorSource&) = delete;

  void configure(MetricSet demand) override;
  [[nodiscard]] SampleTable sample(MetricSet demand) override;
  void reset() override;

 private:
  [[nodiscard]] SensorPass beginPass() const;
  void prepare(MetricSet wanted, SensorPass& pass);
  void noticeChanges(MetricSet wanted, Seconds uptime);

  const Clock& clock_;
  Roots roots_;
  LinuxTemperature cpu_;
  LinuxTemperature battery_;
  LinuxFans fans_;
  std::vector<std::string> listed_;  ///< Names of chips and supplies at the latest look.
  std::optional<Seconds> listAgainAt_;
};

}  // namespace vantora
