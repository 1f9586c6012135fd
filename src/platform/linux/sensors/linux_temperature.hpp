// SPDX-License-Identifier: MIT
//
// One temperature that is made of one or more kept sensor files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/sample.hpp"
#include "platform/linux/sensors/sensor_group.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora {

/// The sensors of one temperature, as they were found.
struct FoundSensors {
  std::vector<UniqueFd> files;
  double unitsPerDegree = 1;
  std::string source;  ///< Of a valid sample; without files the reason why there is none.
};

class LinuxTemperature {
 public:
  enum class Value { hottest, mean };
  using Finder = std::function<FoundSensors(ChipLookup&)>;

  /// `noun` names the sensors in the texts of failures: "sensores de CPU".
  LinuxTemperature(Value value, std::string noun, Finder find)
      : value_(value), noun_(std::move(noun)), find_(std::move(find)) {}

  /// Opens the sensors if that is due.
  void prepare(SensorPass& pass);
  /// Reads every sensor, one system call each. All of them or none: the one that does not
  /// answer may be the hottest.
  [[nodiscard]] MetricSample sample(SensorPass& pass);
  /// Looks for the sensors anew with the next pass.
  void lookAgain() { upkeep_.lookAgain(); }
  /// Lets go of everything.
  void reset();

 private:
  struct Reading {
    std::size_t count = 0;  ///< How many sensors gave a believable value.
    double hottest = 0;     ///< °C
    double sum = 0;         ///< °C
    bool deviceGone = false;
  };
  void open(SensorPass& pass);
  [[nodiscard]] Reading read() const;

  Value value_;
  std::string noun_;
  Finder find_;
  SensorUpkeep upkeep_;
  FoundSensors sensors_;
};

/// The CPU's own sensors among the chips.
[[nodiscard]] FoundSensors findCpuSensors(ChipLookup& chips);
/// The thermometers of the machine's batteries below `powerSupplyRoot`, or else the one that
/// the machine's controller has for the battery.
[[nodiscard]] FoundSensors findBatterySensors(const std::string& powerSupplyRoot,
                                              ChipLookup& chips);

}  // namespace vantora
