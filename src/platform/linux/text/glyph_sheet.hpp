// SPDX-License-Identifier: MIT
//
// The drawn pictures of characters in one typeface at one pixel size, kept so that drawing
// a text again is copying. All ink of a sheet lies in one piece of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/linux/text/glyph_source.hpp"
#include "status/text_engine.hpp"

namespace vantora {

class GlyphSheet {
 public:
  GlyphSheet(bool isMonospaced, std::int32_t size) : isMonospaced_(isMonospaced), size_(size) {}

  [[nodiscard]] bool isMonospaced() const { return isMonospaced_; }
  /// In 64ths of a pixel.
  [[nodiscard]] std::int32_t size() const { return size_; }

  /// The typeface, and its size in 64ths of a pixel, which this sheet is for.
  [[nodiscard]] bool isFor(bool isMonospaced, std::int32_t size) const {
    return isMonospaced_ == isMonospaced && size_ == size;
  }

  struct Glyph {
    std::uint32_t key;
    std::int16_t left;
    std::int16_t top;
    std::uint16_t width;
    std::uint16_t height;
    std::uint32_t offset;
  };

  /// Null when it was not added. Valid until the next add().
  [[nodiscard]] const Glyph* find(char32_t character, int phase) const;

  /// Makes room for exactly as much more, which add() would do in steps of twice the size.
  void reserve(std::size_t glyphs, std::size_t pixels);

  /// Keeps the picture; the one that is there already if there is one.
  void add(char32_t character, int phase, const GlyphImage& image);

  /// Draws the ink into the mask, over what is there; tells the columns.
  InkSpan draw(const Glyph& glyph, AlphaBitmap& target, int penColumn, int baselineRow) const;

 private:
  bool isMonospaced_;
  std::int32_t size_;
  std::vector<Glyph> glyphs_;  // By key.
  std::vector<std::uint8_t> ink_;
};

}  // namespace vantora
