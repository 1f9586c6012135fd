// SPDX-License-Identifier: MIT
#pragma once

#include "status/bitmap.hpp"
#include "status/status_presentation.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// The picture as pixels, `scale` of them to a point. A picture whose size is no whole
/// number of pixels gets one more column or row, to the right or at the top. Empty when
/// the scale is not a positive number, or when a side would pass 16,384 pixels.
[[nodiscard]] AlphaBitmap rasterise(const StatusImage& image, TextEngine& engine, double scale);

}  // namespace vantora
