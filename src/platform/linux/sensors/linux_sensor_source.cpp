// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_sensor_source.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {

LinuxSensorSource::LinuxSensorSource(const Clock& clock, Roots roots)
    : clock_(clock),
      roots_(std::move(roots)),
      cpu_(LinuxTemperature::Value::hottest, "sensores de CPU", findCpuSensors),
      battery_(LinuxTemperature::Value::mean, "sensores da bateria", [this](ChipLookup& chips) {
        return findBatterySensors(roots_.powerSupply, chips);
      }) {}

void LinuxSensorSource::configure(MetricSet demand) {
  const MetricSet wanted = metricsOfFamily(demand, MetricFamily::sensors);
  if (wanted.empty()) {
    reset();
    return;
  }
  SensorPass pass = beginPass();
  prepare(wanted, pass);
}

SampleTable LinuxSensorSource::sample(MetricSet demand) {
  SampleTable samples;
  const MetricSet wanted = metricsOfFamily(demand, MetricFamily::sensors);
  if (wanted.empty()) {
    return samples;
  }
  SensorPass pass = beginPass();
  prepare(wanted, pass);
  if (wanted.contains(MetricID::batteryTemperature)) {
    samples.set(MetricID::batteryTemperature, battery_.sample(pass));
  }
  if (wanted.contains(MetricID::cpuTemperature)) {
    samples.set(MetricID::cpuTemperature, cpu_.sample(pass));
  }
  if (wanted.intersects(LinuxFans::metrics)) {
    fans_.sample(wanted, pass, samples);
  }
  return samples;
}

void LinuxSensorSource::reset() {
  cpu_.reset();
  battery_.reset();
  fans_.reset();
  listed_.clear();
  listAgainAt_.reset();
}

SensorPass LinuxSensorSource::beginPass() const {
  return {clock_.uptime(), clock_.now(), ChipLookup(roots_.hwmon)};
}

void LinuxSensorSource::prepare(MetricSet wanted, SensorPass& pass) {
  noticeChanges(wanted, pass.uptime);
  if (wanted.contains(MetricID::cpuTemperature)) {
    cpu_.prepare(pass);
  } else {
    cpu_.reset();
  }
  if (wanted.contains(MetricID::batteryTemperature)) {
    battery_.prepare(pass);
  } else {
    battery_.reset();
  }
  if (wanted.intersects(LinuxFans::metrics)) {
    fans_.prepare(pass);
  } else {
    fans_.reset();
  }
}

// No event announces a chip that appears, so the names are compared now and then. A chip that
// another one of the same name replaced is noticed by its files, which answer no more.
void LinuxSensorSource::noticeChanges(MetricSet wanted, Seconds uptime) {
  if (listAgainAt_ && uptime < *listAgainAt_) {
    return;
  }
  listAgainAt_ = uptime + sensorBackOff;
  std::vector<std::string> names = Sysfs::namesIn(roots_.hwmon);
  if (wanted.contains(MetricID::batteryTemperature)) {
    std::vector<std::string> supplies = Sysfs::namesIn(roots_.powerSupply);
    std::move(supplies.begin(), supplies.end(), std::back_inserter(names));
  }
  if (names == listed_) {
    return;
  }
  listed_ = std::move(names);
  cpu_.lookAgain();
  battery_.lookAgain();
  fans_.lookAgain();
}

}  // namespace vantora
