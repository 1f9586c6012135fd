// SPDX-License-Identifier: MIT
//
// The text engine of a front end that shows characters, no picture: it measures in cells
// and draws nothing, so that the program loads no font.
#pragma once

#include "status/text_engine.hpp"

namespace vantora {

class CellTextEngine final : public TextEngine {
 public:
  /// Every character takes 0.6 of its point size, as in a usual terminal's typeface.
  [[nodiscard]] double width(const StyledText& text) override;
  [[nodiscard]] LineMetrics metrics(const Font& font) override;
  InkSpan draw(AlphaBitmap&, double, double, double, const StyledText&) override { return {}; }
};

}  // namespace vantora
