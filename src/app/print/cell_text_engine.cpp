// SPDX-License-Identifier: MIT
#include "app/print/cell_text_engine.hpp"

#include "app/cells.hpp"

namespace vantora {

double CellTextEngine::width(const StyledText& text) {
  constexpr double cellWidth = 0.6;  // of the point size
  double sum = 0;
  for (const TextRun& run : text) {
    sum += static_cast<double>(cellCount(run.text)) * cellWidth * run.font.pointSize;
  }
  return sum;
}

LineMetrics CellTextEngine::metrics(const Font& font) {
  return {0.8 * font.pointSize, 0.2 * font.pointSize};
}

}  // namespace vantora
