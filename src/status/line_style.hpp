// SPDX-License-Identifier: MIT
//
// How one line of a module is set: its font, its runs, and the widest text that its
// column keeps room for.
#pragma once

#include <string_view>

#include "model/metric.hpp"
#include "model/sample.hpp"
#include "status/text_engine.hpp"

namespace vantora::LineStyle {

/// The largest font size that a row of this height takes, in points.
[[nodiscard]] double maxFontSize(double rowHeight);

/// The font of `metric`'s line, which asked for `size` points. Rates are monospaced so
/// that comma and unit keep their places.
[[nodiscard]] Font font(double size, double rowHeight, MetricID metric);

/// Replaces `line` by the text in that font; the unit letter of a rate is visibly smaller than its
/// digits. Empty for an empty text. Uses the line's memory again.
void style(std::string_view text, const Font& font, MetricID metric, StyledText& line);
/// The same as a line of its own.
[[nodiscard]] StyledText styled(std::string_view text, const Font& font, MetricID metric);

/// The widest text that the metric's line can show under the settings in the snapshot.
[[nodiscard]] std::string_view reserved(MetricID metric, const MetricSnapshot& snapshot);

}  // namespace vantora::LineStyle
