// SPDX-License-Identifier: MIT
#include "platform/linux/freetype_text_engine.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/utf8.hpp"

namespace vantora {
namespace {

constexpr double lineHeight = 11.0 / 9.0;  // In ems.
constexpr double pixelSteps = 64;          // Sizes are kept in 64ths of a pixel.

// Of a character that no font has, in ems.
constexpr double unknownAdvance = 0.6;
constexpr double unknownWidth = 0.5;
constexpr double unknownHeight = 0.7;

// Larger than any picture; keeps the arithmetic in pixels within an int.
constexpr double farAway = 1e6;

GlyphImage unknownGlyph(double pixelSize) {
  const int width = std::max(3, static_cast<int>(std::lround(unknownWidth * pixelSize)));
  const int height = std::max(3, static_cast<int>(std::lround(unknownHeight * pixelSize)));
  GlyphImage image{0, height, AlphaBitmap(width, height)};
  constexpr std::uint8_t full = 255;
  for (int column = 0; column < width; ++column) {
    image.ink.at(column, 0) = full;
    image.ink.at(column, height - 1) = full;
  }
  for (int row = 0; row < height; ++row) {
    image.ink.at(0, row) = full;
    image.ink.at(width - 1, row) = full;
  }
  return image;
}

/// Draws the character, and with a digit all of them: readings change their digits all
/// the time, and the fonts should be opened once for that.
void load(char32_t character, double pixelSize, bool isMonospaced, GlyphSheet& sheet,
          OpenFonts& open) {
  constexpr std::u32string_view digits = U"0123456789";
  const bool isDigit = digits.find(character) != std::u32string_view::npos;
  for (const char32_t wanted : isDigit ? digits : std::u32string_view(&character, 1)) {
    for (int phase = 0; phase < GlyphSheet::phases; ++phase) {
      const std::optional<GlyphImage> image =
          open.firstAnswer(isMonospaced, [&](const FreetypeFace& face) {
            return face.render(wanted, pixelSize, static_cast<double>(phase) / GlyphSheet::phases);
          });
      sheet.add(wanted, phase, image ? *image : unknownGlyph(pixelSize));
    }
  }
}

}  // namespace

FreetypeTextEngine::FreetypeTextEngine(FontSelection fonts)
    : fonts_(std::move(fonts)),
      digitHeight_(
          OpenFonts(fonts_)
              .firstAnswer(false, [](const FreetypeFace& face) { return face.height('1'); })
              .value_or(unknownHeight)) {}

float FreetypeTextEngine::advance(bool isMonospaced, char32_t character, OpenFonts& open) {
  std::vector<Advance>& known = advances_[isMonospaced ? 1 : 0];
  const auto place = std::lower_bound(
      known.begin(), known.end(), character,
      [](const Advance& entry, char32_t wanted) { return entry.character < wanted; });
  if (place != known.end() && place->character == character) {
    return place->em;
  }
  const std::optional<double> found = open.firstAnswer(
      isMonospaced, [character](const FreetypeFace& face) { return face.advance(character); });
  const Advance entry{character, static_cast<float>(found.value_or(unknownAdvance))};
  known.insert(place, entry);
  return entry.em;
}

GlyphSheet& FreetypeTextEngine::sheet(bool isMonospaced, std::int32_t size) {
  const auto place = std::find_if(sheets_.begin(), sheets_.end(), [&](const GlyphSheet& each) {
    return each.isFor(isMonospaced, size);
  });
  if (place != sheets_.end()) {
    return *place;
  }
  // Somebody who tries sizes in the settings leaves sheets behind that nobody needs.
  constexpr std::size_t mostSheets = 16;
  if (sheets_.size() >= mostSheets) {
    sheets_.erase(sheets_.begin());
  }
  return sheets_.emplace_back(isMonospaced, size);
}

double FreetypeTextEngine::width(const StyledText& text) {
  OpenFonts open(fonts_);
  double sum = 0;
  for (const TextRun& run : text) {
    double ems = 0;
    for (std::string_view rest = run.text; !rest.empty();) {
      ems += advance(run.font.face == FontFace::monospaced, takeCharacter(rest), open);
    }
    sum += ems * run.font.pointSize;
  }
  return sum;
}

LineMetrics FreetypeTextEngine::metrics(const Font& font) {
  return {(lineHeight + digitHeight_) / 2 * font.pointSize,
          (lineHeight - digitHeight_) / 2 * font.pointSize};
}

void FreetypeTextEngine::draw(AlphaBitmap& target, double scale, double x, double y,
                              const StyledText& text) {
  const auto isNear = [](double pixels) { return std::fabs(pixels) < farAway; };
  double pen = x * scale;
  if (target.pixels.empty() || !(scale > 0) || !isNear(pen) || !isNear(y * scale)) {
    return;
  }
  OpenFonts open(fonts_);
  // Baselines stand on whole rows of pixels: that is what keeps small type crisp.
  const int baseline = target.height - static_cast<int>(std::lround(y * scale));
  for (const TextRun& run : text) {
    const bool isMonospaced = run.font.face == FontFace::monospaced;
    constexpr double smallest = 1;
    constexpr double largest = 512;
    const auto size = static_cast<std::int32_t>(
        std::lround(std::clamp(run.font.pointSize * scale, smallest, largest) * pixelSteps));
    const double pixelSize = size / pixelSteps;
    GlyphSheet& glyphs = sheet(isMonospaced, size);
    for (std::string_view rest = run.text; !rest.empty() && isNear(pen);) {
      const char32_t character = takeCharacter(rest);
      const auto quarters = static_cast<int>(std::floor(pen * GlyphSheet::phases + 0.5));
      const int phase = quarters & (GlyphSheet::phases - 1);
      const int column = (quarters - phase) / GlyphSheet::phases;
      const GlyphSheet::Glyph* glyph = glyphs.find(character, phase);
      if (glyph == nullptr) {
        load(character, pixelSize, isMonospaced, glyphs, open);
        glyph = glyphs.find(character, phase);
      }
      glyphs.draw(*glyph, target, column, baseline);
      pen +=
          static_cast<double>(advance(isMonospaced, character, open)) * run.font.pointSize * scale;
    }
  }
}

}  // namespace vantora
