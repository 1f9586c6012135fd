// SPDX-License-Identifier: MIT
#include "status/line_style.hpp"

#include <algorithm>
#include <string>

namespace vantora::LineStyle {
namespace {

bool isRate(MetricID metric) {
  return family(metric) == MetricFamily::network;
}

}  // namespace

double maxFontSize(double rowHeight) {
  constexpr double minSize = 8;
  return std::max(rowHeight - 1, minSize);
}

Font font(double size, double rowHeight, MetricID metric) {
  return {isRate(metric) ? Typeface::monospaced : Typeface::tabularDigits,
          std::min(size, maxFontSize(rowHeight))};
}

void style(std::string_view text, const Font& font, MetricID metric, StyledText& line) {
  const bool hasUnit = isRate(metric) && text.ends_with('M');
  const std::string_view digits = text.substr(0, text.size() - (hasUnit ? 1 : 0));
  line.resize((digits.empty() ? 0U : 1U) + (hasUnit ? 1U : 0U));
  if (!digits.empty()) {
    line.front().text = digits;
    line.front().font = font;
  }
  if (hasUnit) {
    constexpr double unitShare = 0.7;
    constexpr double minUnitSize = 5;
    line.back().text = "M";
    line.back().font = {Typeface::monospaced, std::max(font.pointSize * unitShare, minUnitSize)};
  }
}

StyledText styled(std::string_view text, const Font& font, MetricID metric) {
  StyledText line;
  style(text, font, metric, line);
  return line;
}

std::string_view reserved(MetricID metric, const MetricSnapshot& snapshot) {
  const bool isDate = metric == MetricID::codexWeeklyReset && snapshot.codex.settings.showResetDate;
  return isDate ? "88/88 88:88" : reservedText(metric);
}

}  // namespace vantora::LineStyle
