// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_temperature.hpp"

#include <algorithm>
#include <cerrno>

#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

// What a thermometer inside of a running machine can show. Drivers without a reading have
// been seen to write absolute zero, or the end of their range.
bool isBelievable(double celsius) {
  return celsius > -100 && celsius < 200;
}

}  // namespace

void LinuxTemperature::prepare(SensorPass& pass) {
  if (upkeep_.mayOpen(pass.uptime)) {
    open(pass);
  }
}

MetricSample LinuxTemperature::sample(SensorPass& pass) {
  Reading reading = read();
  if (reading.deviceGone) {
    pass.chips.forget();
    open(pass);
    reading = read();
  }
  if (!upkeep_.isOpen()) {
    return MetricSample::unavailable(upkeep_.reason());
  }
  const std::size_t all = sensors_.files.size();
  if (reading.count == all) {
    upkeep_.succeeded();
    return MetricSample::valid(value_ == Value::hottest
                                   ? reading.hottest
                                   : reading.sum / static_cast<double>(reading.count),
                               sensors_.source, pass.now);
  }
  if (upkeep_.failed(pass.uptime,
                     "Linux · " + noun_ + " sem resposta; nova tentativa em até 60 s")) {
    sensors_.files.clear();
  }
  return MetricSample::unavailable("Linux · apenas " + std::to_string(reading.count) + "/" +
                                   std::to_string(all) + " " + noun_ + " disponíveis");
}

void LinuxTemperature::reset() {
  sensors_ = {};
  upkeep_ = {};
}

void LinuxTemperature::open(SensorPass& pass) {
  sensors_ = find_(pass.chips);
  if (sensors_.files.empty()) {
    upkeep_.absent(pass.uptime, sensors_.source);
  } else {
    upkeep_.opened();
  }
}

LinuxTemperature::Reading LinuxTemperature::read() const {
  Reading reading;
  for (const UniqueFd& file : sensors_.files) {
    const Sysfs::Number number = Sysfs::readNumber(file.get());
    reading.deviceGone = reading.deviceGone || number.error == ENODEV;
    const double celsius = static_cast<double>(number.value) / sensors_.unitsPerDegree;
    if (number.error != 0 || !isBelievable(celsius)) {
      continue;
    }
    reading.hottest = reading.count == 0 ? celsius : std::max(reading.hottest, celsius);
    reading.sum += celsius;
    ++reading.count;
  }
  return reading;
}

}  // namespace vantora
