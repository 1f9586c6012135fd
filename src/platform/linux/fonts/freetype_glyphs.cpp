// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/freetype_glyphs.hpp"

#include <utility>

#include "platform/linux/fonts/open_fonts.hpp"

namespace vantora {
namespace {

constexpr double pixelSteps = 64;  // Sizes are in 64ths of a pixel.

/// The character at each phase; nothing when one of them cannot be drawn.
std::vector<GlyphImage> images(char32_t character, const GlyphRequest& request, OpenFonts& fonts) {
  std::vector<GlyphImage> images;
  for (int phase = 0; phase < glyphPhases; ++phase) {
    std::optional<GlyphImage> image =
        fonts.firstAnswer(request.isMonospaced, [&](const FreetypeFace& face) {
          return face.render(character, request.size / pixelSteps,
                             static_cast<double>(phase) / glyphPhases);
        });
    if (!image) {
      return {};
    }
    images.push_back(std::move(*image));
  }
  return images;
}

}  // namespace

FreetypeGlyphs::FreetypeGlyphs(FontSelection fonts) : fonts_(std::move(fonts)) {}

std::optional<GlyphAnswer> FreetypeGlyphs::draw(const GlyphRequest& request) {
  constexpr double missing = -1;
  OpenFonts fonts(fonts_);
  GlyphAnswer answer;
  answer.digitHeight =
      fonts.firstAnswer(false, [](const FreetypeFace& face) { return face.height('1'); })
          .value_or(missing);
  for (const char32_t character : request.characters) {
    const std::optional<double> advance = fonts.firstAnswer(
        request.isMonospaced,
        [character](const FreetypeFace& face) { return face.advance(character); });
    answer.characters.push_back(
        {character, static_cast<float>(advance.value_or(missing)),
         request.size > 0 ? images(character, request, fonts) : std::vector<GlyphImage>()});
  }
  return answer;
}

}  // namespace vantora
