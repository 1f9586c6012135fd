// SPDX-License-Identifier: MIT
//
// The machine's first two fans, as its fan chip tells them.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "model/sample.hpp"
#include "platform/linux/sensor_group.hpp"
#include "platform/linux/unique_fd.hpp"

namespace vantora {

/// All fans are those of one kind of chip, the machine's controller where it has one: a
/// second kind may show the same fans again. Maxima are read once for each opening.
class LinuxFans {
 public:
  static constexpr MetricSet metrics{MetricID::fan1Percent, MetricID::fan2Percent,
                                     MetricID::fan1RPM, MetricID::fan2RPM};

  /// Opens the fans if that is due.
  void prepare(SensorPass& pass);
  /// Reads each demanded fan once and adds a sample for each demanded fan metric.
  void sample(MetricSet demand, SensorPass& pass, SampleTable& samples);
  /// Looks for the fans anew with the next pass.
  void lookAgain() { upkeep_.lookAgain(); }
  /// Lets go of everything.
  void reset();

 private:
  static constexpr std::size_t fansRead = 2;
  struct Fan {
    UniqueFd file;
    std::optional<double> maximum;  ///< Revolutions per minute; absent when not told.
    std::string chip;
    std::string prefix;  ///< "fan1"
  };
  struct Reading;

  void open(SensorPass& pass);
  [[nodiscard]] Reading read(MetricSet demand) const;
  [[nodiscard]] MetricSample sampleOf(MetricID metric, const Reading& reading, WallTime now) const;

  SensorUpkeep upkeep_;
  std::vector<Fan> fans_;
};

}  // namespace vantora
