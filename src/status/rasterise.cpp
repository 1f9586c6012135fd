// SPDX-License-Identifier: MIT
#include "status/rasterise.hpp"

#include <cmath>
#include <optional>

namespace vantora {
namespace {

std::optional<int> pixels(double points, double scale) {
  constexpr double maxSide = 16384;
  // So that a sum of widths that misses a whole number by a rounding error costs no column.
  constexpr double tolerance = 1e-6;
  const double length = std::ceil(points * scale - tolerance);
  return length >= 1 && length <= maxSide ? std::optional(static_cast<int>(length)) : std::nullopt;
}

}  // namespace

AlphaBitmap rasterise(const StatusImage& image, TextEngine& engine, double scale) {
  return rasterise(image, {.width = image.width, .height = image.height}, engine, scale);
}

AlphaBitmap rasterise(const StatusImage& image, const ImageFrame& frame, TextEngine& engine,
                      double scale) {
  const auto width = pixels(frame.width, scale);
  const auto height = pixels(frame.height, scale);
  if (!(scale > 0) || !width || !height) {
    return {};
  }
  AlphaBitmap bitmap(*width, *height);
  for (const PlacedText& text : image.texts) {
    engine.draw(bitmap, scale, text.x + frame.left, text.y + frame.bottom, text.text);
  }
  return bitmap;
}

}  // namespace vantora
