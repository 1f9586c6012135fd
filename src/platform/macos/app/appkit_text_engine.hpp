// SPDX-License-Identifier: MIT
#pragma once

#include "status/text_engine.hpp"

namespace vantora {

/// The system's fonts in medium weight, measured and drawn by AppKit. Keeps nothing:
/// AppKit keeps fonts and glyphs itself.
class AppKitTextEngine final : public TextEngine {
 public:
  [[nodiscard]] double width(const StyledText& text) override;
  [[nodiscard]] LineMetrics metrics(const Font& font) override;
  /// Names all columns of the mask.
  InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
               const StyledText& text) override;
};

}  // namespace vantora
