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
InkSpan drawUnknown(AlphaBitmap& target, std::int32_t size, int column, int baseline) {
  GlyphSheet sheet(false, size);
  sheet.add(0, 0, unknownGlyph(size / pixelSteps));
  return sheet.draw(*sheet.find(0, 0), target, column, baseline);
}

void add(InkSpan& span, const InkSpan& ink) {
  if (ink.begin < ink.end) {
    span.begin = span.begin < span.end ? std::min(span.begin, ink.begin) : ink.begin;
    span.end = std::max(span.end, ink.end);
  }
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

std::size_t GlyphTextEngine::Advances::placeOf(char32_t character) const {
  const auto place = std::lower_bound(
      others_.begin(), others_.end(), character,
      [](const Entry& entry, char32_t wanted) { return entry.character < wanted; });
  return static_cast<std::size_t>(place - others_.begin());
}

std::optional<float> GlyphTextEngine::Advances::find(char32_t character) const {
  if (character < ascii_.size()) {
    const float em = ascii_[character];
    return em == unknown ? std::nullopt : std::optional(em);
  }
  const std::size_t place = placeOf(character);
  return place < others_.size() && others_[place].character == character
             ? std::optional(others_[place].em)
             : std::nullopt;
}

void GlyphTextEngine::Advances::keep(char32_t character, float em) {
  if (character < ascii_.size()) {
    ascii_[character] = em;
  } else if (!find(character)) {
    others_.insert(others_.begin() + static_cast<std::ptrdiff_t>(placeOf(character)),
                   {character, em});
  }
}

GlyphTextEngine::GlyphTextEngine(GlyphSource& source) : source_(source) {}

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
    known.keep(each.character,
               each.advance < 0 ? static_cast<float>(unknownAdvance) : each.advance);
  }
}

std::optional<float> GlyphTextEngine::advance(bool isMonospaced, char32_t character) {
  const Advances& known = advances_[isMonospaced ? 1 : 0];
  std::optional<float> em = known.find(character);
  if (!em) {
    learnAdvances(isMonospaced, character);
    em = known.find(character);
  }
  return em;
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
  // More than squares of six sizes need, each with lines of three, four and five signs: with
  // fewer every change of a text would start the source again.
  constexpr std::size_t maxSheets = 48;
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
      ems += advance(run.font.typeface == Typeface::monospaced, takeCharacter(rest))
                 .value_or(static_cast<float>(unknownAdvance));
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

InkSpan GlyphTextEngine::draw(AlphaBitmap& target, double scale, double x, double y,
                              const StyledText& text) {
  const auto isNear = [](double pixels) { return std::fabs(pixels) < farAway; };
  double pen = x * scale;
  if (target.pixels.empty() || !(scale > 0) || !isNear(pen) || !isNear(y * scale)) {
    return {};
  }
  InkSpan span;
  // Baselines are on whole rows of pixels: that is what keeps small type crisp.
  const int baseline = target.height - static_cast<int>(std::lround(y * scale));
  for (const TextRun& run : text) {
    const bool isMonospaced = run.font.typeface == Typeface::monospaced;
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
        add(span, glyphs.draw(*glyph, target, column, baseline));
      } else {
        add(span, drawUnknown(target, size, column, baseline));
        span.isFinal = false;
      }
      const std::optional<float> em = advance(isMonospaced, character);
      span.isFinal = span.isFinal && em;
      pen += em.value_or(static_cast<float>(unknownAdvance)) * run.font.pointSize * scale;
    }
  }
  return span;
}

}  // namespace vantora
