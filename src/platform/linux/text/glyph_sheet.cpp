// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_sheet.hpp"

#include <algorithm>
#include <cstddef>

namespace vantora {
namespace {

std::uint32_t keyOf(char32_t character, int phase) {
  return static_cast<std::uint32_t>(character) * glyphPhases + static_cast<std::uint32_t>(phase);
}

constexpr auto comesBefore = [](const GlyphSheet::Glyph& glyph, std::uint32_t key) {
  return glyph.key < key;
};

/// Both inks together, as if each let through what the other leaves.
std::uint8_t over(std::uint8_t below, std::uint8_t above) {
  constexpr unsigned full = 255;
  const unsigned through = (full - below) * (full - above);
  return static_cast<std::uint8_t>(full - (through + full / 2) / full);
}

}  // namespace

const GlyphSheet::Glyph* GlyphSheet::find(char32_t character, int phase) const {
  const std::uint32_t key = keyOf(character, phase);
  const auto place = std::lower_bound(glyphs_.begin(), glyphs_.end(), key, comesBefore);
  return place != glyphs_.end() && place->key == key ? &*place : nullptr;
}

void GlyphSheet::reserve(std::size_t glyphs, std::size_t pixels) {
  glyphs_.reserve(glyphs_.size() + glyphs);
  ink_.reserve(ink_.size() + pixels);
}

void GlyphSheet::add(char32_t character, int phase, const GlyphImage& image) {
  const std::uint32_t key = keyOf(character, phase);
  const auto place = std::lower_bound(glyphs_.begin(), glyphs_.end(), key, comesBefore);
  if (place != glyphs_.end() && place->key == key) {
    return;
  }
  glyphs_.insert(
      place,
      {key, static_cast<std::int16_t>(image.left), static_cast<std::int16_t>(image.top),
       static_cast<std::uint16_t>(image.ink.width), static_cast<std::uint16_t>(image.ink.height),
       static_cast<std::uint32_t>(ink_.size())});
  ink_.insert(ink_.end(), image.ink.pixels.begin(), image.ink.pixels.end());
}

InkSpan GlyphSheet::draw(const Glyph& glyph, AlphaBitmap& target, int penColumn,
                         int baselineRow) const {
  const int left = penColumn + glyph.left;
  const int top = baselineRow - glyph.top;
  const int firstColumn = std::max(0, -left);
  const int endColumn = std::min<int>(glyph.width, target.width - left);
  const int firstRow = std::max(0, -top);
  const int endRow = std::min<int>(glyph.height, target.height - top);
  if (firstColumn >= endColumn || firstRow >= endRow) {
    return {};
  }
  for (int row = firstRow; row < endRow; ++row) {
    const std::uint8_t* source =
        ink_.data() + glyph.offset + static_cast<std::ptrdiff_t>(row) * glyph.width + firstColumn;
    std::uint8_t* pixel = &target.at(left + firstColumn, top + row);
    for (int column = firstColumn; column < endColumn; ++column, ++source, ++pixel) {
      if (*source != 0) {
        *pixel = *pixel == 0 ? *source : over(*pixel, *source);
      }
    }
  }
  return {left + firstColumn, left + endColumn};
}

}  // namespace vantora
