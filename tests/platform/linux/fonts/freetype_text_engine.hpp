// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "platform/linux/fonts/freetype_glyphs.hpp"
#include "platform/linux/text/glyph_text_engine.hpp"

namespace vantora {

/// The text engine with its fonts in this process, where the agent has vantora-glyphs.
class FreetypeTextEngine final : public TextEngine {
 public:
  explicit FreetypeTextEngine(FontSelection fonts) : glyphs_(std::move(fonts)), engine_(glyphs_) {}

  [[nodiscard]] double width(const StyledText& text) override { return engine_.width(text); }
  [[nodiscard]] LineMetrics metrics(const Font& font) override { return engine_.metrics(font); }
  InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
               const StyledText& text) override {
    return engine_.draw(target, scale, x, y, text);
  }

 private:
  FreetypeGlyphs glyphs_;
  GlyphTextEngine engine_;
};

}  // namespace vantora
