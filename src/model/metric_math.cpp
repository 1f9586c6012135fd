// SPDX-License-Identifier: MIT
#include "model/metric_math.hpp"

#include <cmath>
#include <limits>

namespace vantora::MetricMath {

std::optional<double> percentage(std::uint64_t active, std::uint64_t idle,
                                 std::uint64_t previousActive, std::uint64_t previousIdle) {
  if (active < previousActive || idle < previousIdle) {
    return std::nullopt;
  }
  const std::uint64_t activeDelta = active - previousActive;
  const std::uint64_t idleDelta = idle - previousIdle;
  if (activeDelta > std::numeric_limits<std::uint64_t>::max() - idleDelta) {
    return std::nullopt;
  }
  const std::uint64_t total = activeDelta + idleDelta;
  if (total == 0) {
    return std::nullopt;
  }
  return static_cast<double>(activeDelta) * 100.0 / static_cast<double>(total);
}

std::optional<double> rate(std::uint64_t now, std::uint64_t previous, double seconds) {
  if (now < previous || !(seconds > 0.0) || !std::isfinite(seconds)) {
    return std::nullopt;
  }
  return static_cast<double>(now - previous) / seconds;
}

std::optional<double> fanPercent(double rpm, double maximum) {
  // Written so that a NaN on either side fails every comparison.
  if (!(rpm >= 0.0) || !(maximum > 0.0) || !(rpm <= maximum)) {
    return std::nullopt;
  }
  return rpm * 100.0 / maximum;
}

}  // namespace vantora::MetricMath
