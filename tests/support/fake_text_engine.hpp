// SPDX-License-Identifier: MIT
//
// A text engine whose measures can be worked out in the head: every character is 0.6 of
// the point size wide, lines rise 0.9 and fall 0.2 of it, and a character is a block of
// ink from the baseline up to 0.7 of the size, with a gap behind it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

#include "status/text_engine.hpp"

namespace vantora::test {

class FakeTextEngine final : public TextEngine {
 public:
  static constexpr double advance = 0.6;
  static constexpr double ascent = 0.9;
  static constexpr double descent = 0.2;
  static constexpr double capitals = 0.7;

  [[nodiscard]] double width(const StyledText& text) override {
    ++measurements;
    double sum = 0;
    for (const TextRun& run : text) {
      sum += static_cast<double>(characters(run.text)) * advance * run.font.pointSize;
    }
    return sum;
  }

  [[nodiscard]] LineMetrics metrics(const Font& font) override {
    return {ascent * font.pointSize, descent * font.pointSize};
  }

  InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
               const StyledText& text) override {
    ++drawnLines;
    const double bottom = target.height - y * scale;
    double left = x * scale;
    for (const TextRun& run : text) {
      const double size = run.font.pointSize * scale;
      for (std::ptrdiff_t rest = characters(run.text); rest > 0; --rest) {
        fill(target, left, bottom - capitals * size, left + 0.8 * advance * size, bottom);
        left += advance * size;
      }
    }
    return {pixel(x * scale, target.width), pixel(left, target.width)};
  }

  int measurements = 0;
  int drawnLines = 0;

 private:
  static std::ptrdiff_t characters(std::string_view text) {
    return std::count_if(text.begin(), text.end(), [](char byte) {
      return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    });
  }

  static int pixel(double place, int most) {
    return static_cast<int>(std::clamp(std::round(place), 0.0, static_cast<double>(most)));
  }

  static void fill(AlphaBitmap& target, double left, double top, double right, double bottom) {
    for (int row = pixel(top, target.height); row < pixel(bottom, target.height); ++row) {
      for (int column = pixel(left, target.width); column < pixel(right, target.width); ++column) {
        target.at(column, row) = 255;
      }
    }
  }
};

}  // namespace vantora::test
