// SPDX-License-Identifier: MIT
//
// Where the text engine gets characters from that it has not drawn yet.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "status/bitmap.hpp"

namespace vantora {

/// Pens are on quarters of a pixel, so that letters keep their distances: each character is
/// drawn at all four.
inline constexpr int glyphPhases = 4;

/// The picture of a character: its ink, and where that is from the pen.
struct GlyphImage {
  int left = 0;  ///< Pixels from the pen to the ink's left edge.
  int top = 0;   ///< Pixels from the baseline up to the ink's upper edge.
  AlphaBitmap ink;
  bool operator==(const GlyphImage&) const = default;
};

struct DrawnCharacter {
  char32_t character = 0;
  /// In ems; negative where no font has the character.
  float advance = -1;
  /// One for each phase. Empty where no font can draw it, or where none was asked for.
  std::vector<GlyphImage> images;
  bool operator==(const DrawnCharacter&) const = default;
};

struct GlyphRequest {
  bool isMonospaced = false;
  /// In 64ths of a pixel. 0 asks for advances alone.
  std::int32_t size = 0;
  std::u32string characters;
  bool operator==(const GlyphRequest&) const = default;
};

struct GlyphAnswer {
  /// Of the interface typeface, in ems; negative where there is no font.
  double digitHeight = -1;
  std::vector<DrawnCharacter> characters;
  bool operator==(const GlyphAnswer&) const = default;
};

class GlyphSource {
 public:
  virtual ~GlyphSource() = default;
  /// Every character of the request, in its order. Nothing when there is no answer now; a
  /// later call may get one. Main thread; may read font files.
  [[nodiscard]] virtual std::optional<GlyphAnswer> draw(const GlyphRequest& request) = 0;
};

}  // namespace vantora
