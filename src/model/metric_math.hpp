// SPDX-License-Identifier: MIT
//
// The arithmetic that turns raw counters into values. Pure; each answers nothing
// where the counters allow no honest value.
#pragma once

#include <cstdint>
#include <optional>

namespace vantora::MetricMath {

/// The share of active ticks between two readings, in percent. Nothing when a counter
/// went backwards, when no tick elapsed, or when the sum does not fit 64 bits.
[[nodiscard]] std::optional<double> percentage(std::uint64_t active, std::uint64_t idle,
                                               std::uint64_t previousActive,
                                               std::uint64_t previousIdle);

/// A counter's increase per second. Nothing when it went backwards or when `seconds`
/// is not positive and finite.
[[nodiscard]] std::optional<double> rate(std::uint64_t now, std::uint64_t previous, double seconds);

/// A fan's speed as a percentage of its maximum. Nothing for a negative speed, a
/// maximum that is not positive, a speed above the maximum, or NaN.
[[nodiscard]] std::optional<double> fanPercent(double rpm, double maximum);

}  // namespace vantora::MetricMath
