// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_text_engine.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "model/utf8.hpp"
#include "platform/linux/text/freed_memory.hpp"

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

void addTo(GlyphSheet& sheet, const GlyphAnswer& answer) {
  std::size_t pixels = 0;
  for (const DrawnCharacter& each : answer.characters) {
    for (const GlyphImage& image : each.images) {
      pixels += image.ink.pixels.size();
    }
  }
  sheet.reserve(answer.characters.size() * glyphPhases, pixels);
  for (const DrawnCharacter& each : answer.characters) {
    for (int phase = 0; phase < glyphPhases; ++phase) {
      sheet.add(each.character, phase,
                each.images.empty() ? unknownGlyph(sheet.size() / pixelSteps)
                                    : each.images[static_cast<std::size_t>(phase)]);
    }
  }
}

/// A box in the place of a character that there is no picture of now.
void drawUnknown(AlphaBitmap& target, std::int32_t size, int column, int baseline) {
  GlyphSheet sheet(false, size);
  sheet.add(0, 0, unknownGlyph(size / pixelSteps));
  sheet.draw(*sheet.find(0, 0), target, column, baseline);
}

// The other characters than digits that readings are written with.
constexpr std::u32string_view signsOfReadings = U" %°C.,:—/KMW";
constexpr std::u32string_view digits = U"0123456789";

bool isFound(std::u32string_view characters, char32_t character) {
  return characters.find(character) != std::u32string_view::npos;
}

/// `character`, and when it is the first, what will be asked for next.
std::u32string charactersToMeasure(char32_t character, bool isFirst) {
  std::u32string wanted(1, character);
  if (isFirst) {
    for (char32_t ascii = U' '; ascii <= U'~'; ++ascii) {
      wanted += ascii;
    }
    wanted += U"°—";
  }
  return wanted;
}

}  // namespace

GlyphTextEngine::GlyphTextEngine(GlyphSource& source) : source_(source) {
  for (Advances& each : advances_) {
    each.ascii.fill(-1);
  }
}

void GlyphTextEngine::learnAdvances(bool isMonospaced, char32_t character) {
  Advances& known = advances_[isMonospaced ? 1 : 0];
  const std::optional<GlyphAnswer> answer =
      source_.draw({isMonospaced, 0, charactersToMeasure(character, !known.wereAsked)});
  if (!answer) {
    return;
  }
  known.wereAsked = true;
  digitHeight_ = answer->digitHeight < 0 ? unknownHeight : answer->digitHeight;
  for (const DrawnCharacter& each : answer->characters) {
    const float em = each.advance < 0 ? static_cast<float>(unknownAdvance) : each.advance;
    if (each.character < known.ascii.size()) {
      known.ascii[each.character] = em;
      continue;
    }
    const auto place = std::lower_bound(
        known.others.begin(), known.others.end(), each.character,
        [](const Advances::Entry& entry, char32_t wanted) { return entry.character < wanted; });
    if (place == known.others.end() || place->character != each.character) {
      known.others.insert(place, {each.character, em});
    }
  }
}

float GlyphTextEngine::advance(bool isMonospaced, char32_t character) {
  const Advances& known = advances_[isMonospaced ? 1 : 0];
  const auto find = [&]() -> std::optional<float> {
    if (character < known.ascii.size()) {
      const float em = known.ascii[character];
      return em < 0 ? std::nullopt : std::optional(em);
    }
    const auto place = std::lower_bound(
        known.others.begin(), known.others.end(), character,
        [](const Advances::Entry& entry, char32_t wanted) { return entry.character < wanted; });
    return place != known.others.end() && place->character == character ? std::optional(place->em)
                                                                        : std::nullopt;
  };
  std::optional<float> em = find();
  if (!em) {
    learnAdvances(isMonospaced, character);
    em = find();
  }
  return em.value_or(static_cast<float>(unknownAdvance));
}

/// Adds what the sheet lacks of `text`, and with it what readings that change will need
/// next: all digits, and at the sizes of a panel the signs.
void GlyphTextEngine::learnGlyphs(std::string_view text, GlyphSheet& sheet) {
  constexpr std::int32_t maxSizeWithSigns = 64 * 64;
  std::u32string wanted;
  const auto want = [&](char32_t character) {
    if (sheet.find(character, 0) == nullptr && !isFound(wanted, character)) {
      wanted += character;
    }
  };
  bool hasDigit = false;
  while (!text.empty()) {
    const char32_t character = takeCharacter(text);
    hasDigit = hasDigit || isFound(digits, character);
    want(character);
  }
  if (hasDigit || sheet.size() <= maxSizeWithSigns) {
    std::for_each(digits.begin(), digits.end(), want);
  }
  if (sheet.size() <= maxSizeWithSigns) {
    std::for_each(signsOfReadings.begin(), signsOfReadings.end(), want);
  }
  if (const auto answer = source_.draw({sheet.isMonospaced(), sheet.size(), wanted})) {
    addTo(sheet, *answer);
  }
  returnFreedMemory();
}

GlyphSheet& GlyphTextEngine::sheet(bool isMonospaced, std::int32_t size) {
  const auto place = std::find_if(sheets_.begin(), sheets_.end(), [&](const GlyphSheet& each) {
    return each.isFor(isMonospaced, size);
  });
  if (place != sheets_.end()) {
    return *place;
  }
  // Trying sizes in the settings leaves sheets behind that are of no more use.
  constexpr std::size_t maxSheets = 16;
  if (sheets_.size() >= maxSheets) {
    sheets_.erase(sheets_.begin());
  }
  return sheets_.emplace_back(isMonospaced, size);
}

double GlyphTextEngine::width(const StyledText& text) {
  double sum = 0;
  for (const TextRun& run : text) {
    double ems = 0;
    for (std::string_view rest = run.text; !rest.empty();) {
      ems += advance(run.font.face == FontFace::monospaced, takeCharacter(rest));
    }
    sum += ems * run.font.pointSize;
  }
  return sum;
}

LineMetrics GlyphTextEngine::metrics(const Font& font) {
  if (!digitHeight_) {
    learnAdvances(false, U'1');
  }
  const double digitHeight = digitHeight_.value_or(unknownHeight);
  return {(lineHeight + digitHeight) / 2 * font.pointSize,
          (lineHeight - digitHeight) / 2 * font.pointSize};
}

void GlyphTextEngine::draw(AlphaBitmap& target, double scale, double x, double y,
                           const StyledText& text) {
  const auto isNear = [](double pixels) { return std::fabs(pixels) < farAway; };
  double pen = x * scale;
  if (target.pixels.empty() || !(scale > 0) || !isNear(pen) || !isNear(y * scale)) {
    return;
  }
  // Baselines are on whole rows of pixels: that is what keeps small type crisp.
  const int baseline = target.height - static_cast<int>(std::lround(y * scale));
  for (const TextRun& run : text) {
    const bool isMonospaced = run.font.face == FontFace::monospaced;
    constexpr double minPixels = 1;
    constexpr double maxPixels = 512;
    const auto size = static_cast<std::int32_t>(
        std::lround(std::clamp(run.font.pointSize * scale, minPixels, maxPixels) * pixelSteps));
    GlyphSheet& glyphs = sheet(isMonospaced, size);
    for (std::string_view rest = run.text; !rest.empty() && isNear(pen);) {
      const char32_t character = takeCharacter(rest);
      const auto quarters = static_cast<int>(std::floor(pen * glyphPhases + 0.5));
      const int phase = quarters & (glyphPhases - 1);
      const int column = (quarters - phase) / glyphPhases;
      const GlyphSheet::Glyph* glyph = glyphs.find(character, phase);
      if (glyph == nullptr) {
        learnGlyphs(run.text, glyphs);
        glyph = glyphs.find(character, phase);
      }
      if (glyph != nullptr) {
        glyphs.draw(*glyph, target, column, baseline);
      } else {
        drawUnknown(target, size, column, baseline);
      }
      pen += static_cast<double>(advance(isMonospaced, character)) * run.font.pointSize * scale;
    }
  }
}

}  // namespace vantora
