// SPDX-License-Identifier: MIT
//
// The short text that a module line shows for a metric: narrow, without blanks, with a
// decimal comma and a one-letter unit, never wider than the metric's reserved text in
// any physical range. Pure, callable from any thread; allocates at most the result.
#pragma once

#include <string>
#include <string_view>

#include "model/metric.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"

namespace vantora::MetricFormatter {

/// The text of `metric`. Whatever is no usable reading shows as a dash, except for the
/// battery time of a machine on its adapter that does not charge: "AC". `now` decides
/// what the quota texts show: they age and count down.
[[nodiscard]] std::string text(MetricID metric, const MetricSnapshot& snapshot, WallTime now);

/// Whether `text`, one of those above, says anything: a value or a word. The empty text and
/// the dashes of a missing reading do not.
[[nodiscard]] bool isReading(std::string_view text);

/// A network rate in decimal megabytes per second, at most five characters wide. A
/// negative or not finite rate is a dash.
[[nodiscard]] std::string compactRate(double bytesPerSecond);

}  // namespace vantora::MetricFormatter
