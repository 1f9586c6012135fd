// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>

#include "model/sample.hpp"

namespace vantora {

/// What can be told of the system's readings as the program shows them: texts, where they came
/// from, and how good they are. A value that differs in digits that no text shows is the same.
/// Used on one thread.
class ShownReadings {
 public:
  /// Takes the readings of `snapshot` and returns whether they can be told from those taken
  /// before; from none, when these are the first. Allocates only where they can.
  [[nodiscard]] bool take(const MetricSnapshot& snapshot);

 private:
  struct Reading {
    Quality quality = Quality::unavailable;
    std::string source;
    std::string text;
  };

  std::array<std::optional<Reading>, metricCount> readings_;
  bool batteryOnAC_ = false;
  bool batteryCharging_ = false;
  std::optional<std::string> networkName_;
  bool isFirst_ = true;
};

}  // namespace vantora
