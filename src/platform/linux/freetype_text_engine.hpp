// SPDX-License-Identifier: MIT
//
// The text engine on FreeType. What was measured and drawn once is kept; font files are
// open only while something new is taken from them, so that between redraws the process
// holds a few kilobytes of glyphs and no fonts.
//
// Fonts differ widely in what they call their ascent. Here the line box is 11/9 of the
// point size high for every face and the digits stand in its middle, so that a line
// stands at the same height whatever the user's fonts are, and lines in two faces share
// a baseline.
//
// Without any usable font every character is a hollow box of 0.6 em: the item keeps its
// size and can be clicked, and its tool tip still tells the readings.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/linux/font_selection.hpp"
#include "platform/linux/glyph_sheet.hpp"
#include "platform/linux/open_fonts.hpp"
#include "status/text_engine.hpp"

namespace vantora {

class FreetypeTextEngine final : public TextEngine {
 public:
  explicit FreetypeTextEngine(FontSelection fonts);

  [[nodiscard]] double width(const StyledText& text) override;
  [[nodiscard]] LineMetrics metrics(const Font& font) override;
  void draw(AlphaBitmap& target, double scale, double x, double y, const StyledText& text) override;

 private:
  struct Advance {
    char32_t character;
    float em;
  };

  float advance(bool isMonospaced, char32_t character, OpenFonts& open);
  GlyphSheet& sheet(bool isMonospaced, std::int32_t size);

  FontSelection fonts_;
  double digitHeight_;                            // In ems.
  std::array<std::vector<Advance>, 2> advances_;  // Text and monospaced, by character.
  std::vector<GlyphSheet> sheets_;                // The latest to be made last.
};

}  // namespace vantora
