// SPDX-License-Identifier: MIT
#pragma once

#include "status/bitmap.hpp"
#include "status/status_presentation.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// A place for an image: larger than it, or the image itself. In points.
struct ImageFrame {
  double width = 0;
  double height = 0;
  double left = 0;    ///< From the frame's left edge to the image's.
  double bottom = 0;  ///< From the frame's lower edge to the image's.
  bool operator==(const ImageFrame&) const = default;
};

/// The picture as pixels, `scale` of them to a point. A picture whose size is no whole
/// number of pixels gets one more column or row, to the right or at the top. Empty when
/// the scale is not a positive number, or when a side would pass 16,384 pixels.
[[nodiscard]] AlphaBitmap rasterise(const StatusImage& image, TextEngine& engine, double scale);

/// The frame with the image in it, in the same way.
[[nodiscard]] AlphaBitmap rasterise(const StatusImage& image, const ImageFrame& frame,
                                    TextEngine& engine, double scale);

}  // namespace vantora
