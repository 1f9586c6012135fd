// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/xembed_pixels.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/linux/panels/status_item_picture.hpp"

namespace vantora {
namespace {

constexpr double plateRadius = 5;

std::uint32_t premultiplied(std::uint32_t value, std::uint32_t alpha) {
  return (value * alpha + 127) / 255;
}

}  // namespace

std::vector<std::uint32_t> xPixels(const AlphaBitmap& bitmap, Ink ink, TrayDepth depth) {
  std::vector<std::uint8_t> argb(bitmap.pixels.size() * 4);
  const bool isOpaque = depth == TrayDepth::opaque;
  tint(bitmap, isOpaque ? Ink::lightOnPlate : ink, isOpaque ? 0 : plateRadius, argb);
  std::vector<std::uint32_t> pixels(bitmap.pixels.size());
  for (std::size_t index = 0; index < pixels.size(); ++index) {
    const std::uint8_t* source = &argb[index * 4];
    const std::uint32_t alpha = source[0];
    const std::uint32_t red = premultiplied(source[1], alpha);
    const std::uint32_t green = premultiplied(source[2], alpha);
    const std::uint32_t blue = premultiplied(source[3], alpha);
    pixels[index] = (isOpaque ? 0U : alpha << 24U) | red << 16U | green << 8U | blue;
  }
  return pixels;
}

Ink trayInk(std::span<const std::uint32_t> colours) {
  if (colours.size() < 3) {
    return Ink::lightOnPlate;
  }
  // Luma of ITU-R BT.709.
  const double luma = 0.2126 * colours[0] + 0.7152 * colours[1] + 0.0722 * colours[2];
  constexpr double brightest = 65535;
  return luma > brightest / 2 ? Ink::light : Ink::dark;
}

int scaleFromResources(std::string_view resources) {
  constexpr std::string_view key = "Xft.dpi:";
  constexpr double dotsOfOnePoint = 96;
  while (!resources.empty()) {
    const std::string_view line = resources.substr(0, resources.find('\n'));
    resources.remove_prefix(std::min(line.size() + 1, resources.size()));
    if (!line.starts_with(key)) {
      continue;
    }
    std::string_view value = line.substr(key.size());
    value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
    int dots = 0;
    const auto parsed = std::from_chars(value.data(), value.data() + value.size(), dots);
    if (parsed.ec == std::errc{}) {
      return std::clamp(static_cast<int>(std::lround(dots / dotsOfOnePoint)), 1, 4);
    }
  }
  return 1;
}

}  // namespace vantora
