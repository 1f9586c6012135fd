// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "platform/linux/fonts/font_selection.hpp"
#include "platform/linux/text/glyph_source.hpp"

namespace vantora {

/// Characters drawn with FreeType in this process. Font files are open during a call alone.
class FreetypeGlyphs final : public GlyphSource {
 public:
  explicit FreetypeGlyphs(FontSelection fonts);

  /// Always has an answer.
  [[nodiscard]] std::optional<GlyphAnswer> draw(const GlyphRequest& request) override;

 private:
  const FontSelection fonts_;
};

}  // namespace vantora
