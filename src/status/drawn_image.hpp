// SPDX-License-Identifier: MIT
//
// A picture that is kept while it is shown, for images that change in places: what stayed is
// not drawn again.
#pragma once

#include <vector>

#include "status/rasterise.hpp"

namespace vantora {

/// Lives on the main thread. Pixel for pixel what rasterise() gives for the same image.
class DrawnImage {
 public:
  /// Draws those lines that are not as they were in the last call, and whose ink shares a column
  /// with such a line's; all of them in a frame of another size, at another scale, or where
  /// lines reach into each other. `engine` is the same each time. Valid until the next call.
  const AlphaBitmap& draw(const StatusImage& image, const ImageFrame& frame, TextEngine& engine,
                          double scale);

 private:
  struct Line {
    PlacedText text;
    InkSpan ink;
    bool isDue = false;
  };

  void findDue(const std::vector<PlacedText>& texts);
  void erase(const InkSpan& columns);
  void drawDue(TextEngine& engine);
  [[nodiscard]] bool meetsKept() const;
  void drawAll(TextEngine& engine);

  ImageFrame frame_;
  double scale_ = 0;
  AlphaBitmap bitmap_;
  std::vector<Line> lines_;
};

}  // namespace vantora
