// SPDX-License-Identifier: MIT
//
// The speeds of two of the machine's fans, from the driver of its fan chip.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "model/sample.hpp"
#include "platform/linux/sensors/sensor_group.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora {

/// All fans are those of one kind of chip, because a second kind may show the same fans again:
/// the machine's controller where it has one, and a kind of which no fan turns only where none
/// turns at all. Of the chip's channels those that turn come first. Both are decided, and maxima
/// read, at each opening. A fan that gives no speed in three passes in a row rests for 60 s.
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

  struct Fan {
    UniqueFd file;
    std::optional<double> maximum;  ///< Revolutions per minute; absent when the driver has none.
    std::string chip;
    std::string prefix;      ///< "fan1"
    bool isTurning = false;  ///< When it was opened.
  };
  /// The fans that are read, the first fan first, as an opening at this moment chooses them.
  [[nodiscard]] static std::vector<Fan> find(ChipLookup& chips);

 private:
  static constexpr std::size_t fansRead = 2;
  struct Reading;
  [[nodiscard]] static std::vector<Fan> fansOf(const Hwmon::Chip& chip);
  /// Whether a fan is left alone for a while.
  struct Rest {
    int failures = 0;
    std::optional<Seconds> until;  ///< uptime
  };

  void open(SensorPass& pass);
  void countFailures(const Reading& reading, Seconds uptime);
  [[nodiscard]] Reading read(MetricSet demand, Seconds uptime) const;
  [[nodiscard]] MetricSample sampleOf(MetricID metric, const Reading& reading, WallTime now) const;

  SensorUpkeep upkeep_;
  std::vector<Fan> fans_;
  std::array<Rest, fansRead> rests_{};
};

}  // namespace vantora
