// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>

#include "status/text_engine.hpp"

namespace vantora::test {

/// Every byte is a block, 0.6 of the point size wide and 0.7 high, with a gap of a tenth.
class BlockTextEngine final : public TextEngine {
 public:
  [[nodiscard]] double width(const StyledText& text) override {
    double total = 0;
    for (const TextRun& run : text) {
      total += advance(run) * static_cast<double>(run.text.size());
    }
    return total;
  }
  [[nodiscard]] LineMetrics metrics(const Font& font) override {
    return {.ascent = font.pointSize * 0.9, .descent = font.pointSize * 0.2};
  }
  InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
               const StyledText& text) override {
    ++drawnLines;
    const double left = x;
    for (const TextRun& run : text) {
      for (std::size_t index = 0; index < run.text.size(); ++index) {
        fill(target, x * scale, y * scale, advance(run) * 0.9 * scale,
             run.font.pointSize * 0.7 * scale);
        x += advance(run);
      }
    }
    const auto column = [&](double points) {
      return std::clamp(static_cast<int>(std::lround(points * scale)), 0, target.width);
    };
    return {column(left), column(x)};
  }

  int drawnLines = 0;

 private:
  static double advance(const TextRun& run) { return run.font.pointSize * 0.6; }
  static void fill(AlphaBitmap& target, double x, double y, double width, double height) {
    const int left = std::max(0, static_cast<int>(std::lround(x)));
    const int right = std::min(target.width, static_cast<int>(std::lround(x + width)));
    const int top = std::max(0, target.height - static_cast<int>(std::lround(y + height)));
    const int bottom = std::min(target.height, target.height - static_cast<int>(std::lround(y)));
    for (int row = top; row < bottom; ++row) {
      for (int column = left; column < right; ++column) {
        target.at(column, row) = 255;
      }
    }
  }
};

}  // namespace vantora::test
