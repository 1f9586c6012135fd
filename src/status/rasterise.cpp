// SPDX-License-Identifier: MIT
#include "status/rasterise.hpp"

#include <cmath>
#include <optional>

namespace vantora {
namespace {

std::optional<int> pixels(double points, double scale) {
  constexpr double most = 16384;
  // So that a sum of widths that misses a whole number by a rounding error costs no column.
  constexpr double tolerance = 1e-6;
  const double length = std::ceil(points * scale - tolerance);
  return length >= 1 && length <= most ? std::optional(static_cast<int>(length)) : std::nullopt;
}

}  // namespace

AlphaBitmap rasterise(const StatusImage& image, TextEngine& engine, double scale) {
  const auto width = pixels(image.width, scale);
  const auto height = pixels(image.height, scale);
  if (!(scale > 0) || !width || !height) {
    return {};
  }
  AlphaBitmap bitmap(*width, *height);
  for (const PlacedText& text : image.texts) {
    engine.draw(bitmap, scale, text.x, text.y, text.text);
  }
  return bitmap;
}

}  // namespace vantora
