// SPDX-License-Identifier: MIT
//
// Measuring and drawing of short texts: the only thing that the status renderer needs
// from the platform. Lengths are in points; y grows upwards.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <vector>

#include "status/bitmap.hpp"

namespace vantora {

/// The typefaces that the picture uses, all of medium weight.
enum class Typeface : std::uint8_t {
  system,         ///< The desktop's user interface typeface.
  tabularDigits,  ///< The same, with all digits of one width.
  monospaced,     ///< Every glyph of one width.
};

struct Font {
  Typeface typeface = Typeface::tabularDigits;
  double pointSize = 9;
  auto operator<=>(const Font&) const = default;
};

/// Text in one font.
struct TextRun {
  std::string text;  ///< UTF-8
  Font font;
  bool operator==(const TextRun&) const = default;
};

/// One line of text, its runs side by side on one baseline.
using StyledText = std::vector<TextRun>;

struct LineMetrics {
  double ascent = 0;   ///< From the baseline up to the line's top.
  double descent = 0;  ///< From the baseline down to the line's bottom; positive.
};

/// What a drawing left in the mask.
struct InkSpan {
  /// All ink is in the mask's columns from `begin` up to before `end`; none where they are equal.
  int begin = 0;
  int end = 0;
  /// Drawing the same again would give the same ink. Not so while characters are missing that may
  /// be had later.
  bool isFinal = true;
  bool operator==(const InkSpan&) const = default;

  [[nodiscard]] bool meets(const InkSpan& other) const {
    return begin < other.end && other.begin < end;
  }
};

/// Lives on the main thread. Never fails: a glyph that no font has shows as the font's
/// own sign for that, and bytes that are no UTF-8 as U+FFFD.
class TextEngine {
 public:
  virtual ~TextEngine() = default;

  /// The advance of the whole line, in points. 0 for an empty one.
  [[nodiscard]] virtual double width(const StyledText& text) = 0;

  /// The line box of the font, which texts hang from by their ascent.
  [[nodiscard]] virtual LineMetrics metrics(const Font& font) = 0;

  /// Draws the line into the mask, its baseline's left end at (x, y) points from the
  /// mask's lower left corner. `scale` is the number of pixels in a point. What falls
  /// outside of the mask is cut off; ink that is there stays.
  virtual InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
                       const StyledText& text) = 0;
};

}  // namespace vantora
