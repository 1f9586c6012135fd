// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantora {

/// A template picture: how much ink each pixel has, and no colour. The front end
/// tints it. Rows from the top, without padding.
struct AlphaBitmap {
  AlphaBitmap() = default;
  /// An empty (transparent) picture; sizes in pixels, not negative.
  AlphaBitmap(int pixelWidth, int pixelHeight)
      : width(pixelWidth),
        height(pixelHeight),
        pixels(static_cast<std::size_t>(pixelWidth) * static_cast<std::size_t>(pixelHeight)) {}

  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;

  [[nodiscard]] std::uint8_t& at(int x, int y) {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
  }
  [[nodiscard]] std::uint8_t at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
  }
  bool operator==(const AlphaBitmap&) const = default;
};

}  // namespace vantora
