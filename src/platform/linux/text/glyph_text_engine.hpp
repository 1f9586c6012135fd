// SPDX-License-Identifier: MIT
//
// The text engine of Linux. What was measured and drawn once is kept, a few kilobytes of
// glyphs; what is new comes from a GlyphSource, a set of characters at a time.
//
// Fonts differ widely in what they call their ascent. Here the line box is 11/9 of the
// point size high for every typeface with the digits in its middle, so that a line
// is at the same height whatever the user's fonts are, and lines in two typefaces share
// a baseline.
//
// Without any usable font every character is a hollow box of 0.6 em: the item keeps its
// size and can be clicked, and its tool tip still shows the readings.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/text/glyph_sheet.hpp"
#include "platform/linux/text/glyph_source.hpp"
#include "status/text_engine.hpp"

namespace vantora {

class GlyphTextEngine final : public TextEngine {
 public:
  /// `source` outlives the engine.
  explicit GlyphTextEngine(GlyphSource& source);

  [[nodiscard]] double width(const StyledText& text) override;
  [[nodiscard]] LineMetrics metrics(const Font& font) override;
  InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
               const StyledText& text) override;

 private:
  /// What is known of one typeface, in ems.
  class Advances {
   public:
    Advances() { ascii_.fill(unknown); }

    [[nodiscard]] std::optional<float> find(char32_t character) const;
    void keep(char32_t character, float em);

    bool wereAsked = false;

   private:
    static constexpr float unknown = -1;
    struct Entry {
      char32_t character;
      float em;
    };
    [[nodiscard]] std::size_t placeOf(char32_t character) const;

    std::array<float, 128> ascii_;
    std::vector<Entry> others_;  // by character
  };

  /// Nothing when it cannot be had now.
  std::optional<float> advance(bool isMonospaced, char32_t character);
  void learnAdvances(bool isMonospaced, char32_t character);
  void learnGlyphs(std::string_view text, GlyphSheet& sheet);
  GlyphSheet& sheet(bool isMonospaced, std::int32_t size);

  GlyphSource& source_;
  std::optional<double> digitHeight_;  // in ems
  std::array<Advances, 2> advances_;   // of the interface typeface and the monospaced one
  std::vector<GlyphSheet> sheets_;     // the latest to be made last
};

}  // namespace vantora
