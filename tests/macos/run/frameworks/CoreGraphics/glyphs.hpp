// SPDX-License-Identifier: MIT
//
// Short texts measured and drawn by FreeType, without hinting, from DejaVu: not the system's
// fonts, but enough to see that each text is where it belongs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace standin {

struct Typeface {
  bool isMonospaced = false;
  double pointSize = 9;
};

/// An 8-bit mask in the caller's memory, its first row the top one.
struct Mask {
  std::uint8_t* pixels = nullptr;
  std::size_t width = 0;
  std::size_t height = 0;
  std::size_t rowBytes = 0;
};

[[nodiscard]] double widthOf(const std::string& text, const Typeface& face);
[[nodiscard]] double ascenderOf(const Typeface& face);
[[nodiscard]] double descenderOf(const Typeface& face);  // negative

/// Draws the text, its baseline's left end at (x, y) points from the lower left corner.
void drawText(const Mask& mask, double scale, double x, double y, const std::string& text,
              const Typeface& face);

}  // namespace standin
