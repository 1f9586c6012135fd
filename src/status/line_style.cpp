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

double largestFont(double rowHeight) {
  constexpr double smallest = 8;
  return std::max(rowHeight - 1, smallest);
}

Font font(double size, double rowHeight, MetricID metric) {
  return {isRate(metric) ? FontFace::monospaced : FontFace::tabularDigits,
          std::min(size, largestFont(rowHeight))};
}

StyledText styled(std::string_view text, const Font& font, MetricID metric) {
  StyledText runs;
  if (isRate(metric) && text.ends_with('M')) {
    constexpr double unitShare = 0.7;
    constexpr double smallestUnit = 5;
    const std::string_view digits = text.substr(0, text.size() - 1);
    runs.reserve(2);
    if (!digits.empty()) {
      runs.push_back({std::string(digits), font});
    }
    runs.push_back(
        {"M", {FontFace::monospaced, std::max(font.pointSize * unitShare, smallestUnit)}});
  } else if (!text.empty()) {
    runs.push_back({std::string(text), font});
  }
  return runs;
}

std::string_view reserved(MetricID metric, const MetricSnapshot& snapshot) {
  const bool isDate = metric == MetricID::codexWeeklyReset && snapshot.codex.settings.showResetDate;
  return isDate ? "88/88 88:88" : reservedText(metric);
}

}  // namespace vantora::LineStyle
