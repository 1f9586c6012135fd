// SPDX-License-Identifier: MIT
#include "platform/linux/tray_menu_picture.hpp"

#include <algorithm>
#include <cmath>
#include <string>

namespace vantora {
namespace {

constexpr double rowHeight = 26;
constexpr double rim = 5;  // above the first row and below the last
constexpr double indent = 16;
constexpr double leastWidth = 140;
constexpr Font font{.face = FontFace::system, .pointSize = 13};

struct Colour {
  std::uint32_t red;
  std::uint32_t green;
  std::uint32_t blue;
};
// A dark menu, as the plate of the picture.
constexpr Colour ground{0x2D, 0x2D, 0x2D};
constexpr Colour edge{0x50, 0x50, 0x50};
constexpr Colour highlight{0x35, 0x72, 0xC6};
constexpr Colour text{0xF5, 0xF5, 0xF5};

std::uint32_t mix(const Colour& below, std::uint32_t ink) {
  const auto channel = [ink](std::uint32_t under, std::uint32_t over) {
    return (over * ink + under * (255 - ink) + 127) / 255;
  };
  return channel(below.red, text.red) << 16U | channel(below.green, text.green) << 8U |
         channel(below.blue, text.blue);
}

}  // namespace

TrayMenuLayout layOutTrayMenu(const std::vector<std::string_view>& labels, TextEngine& engine) {
  TrayMenuLayout layout;
  layout.entries = labels.size();
  layout.height = 2 * rim + rowHeight * static_cast<double>(labels.size());
  layout.width = leastWidth;
  const LineMetrics metrics = engine.metrics(font);
  double baseline = layout.height - rim - (rowHeight + metrics.ascent - metrics.descent) / 2;
  for (const std::string_view label : labels) {
    StyledText line{{.text = std::string(label), .font = font}};
    layout.width = std::max(layout.width, std::ceil(engine.width(line) + 2 * indent));
    layout.texts.texts.push_back({.x = indent, .y = baseline, .text = std::move(line)});
    baseline -= rowHeight;
  }
  layout.texts.width = layout.width;
  layout.texts.height = layout.height;
  return layout;
}

std::optional<std::size_t> trayMenuEntryAt(const TrayMenuLayout& layout, double x, double y) {
  if (x < 0 || x >= layout.width || y < rim || y >= layout.height - rim) {
    return std::nullopt;
  }
  return static_cast<std::size_t>((y - rim) / rowHeight);
}

std::size_t neighbourEntry(const TrayMenuLayout& layout, std::optional<std::size_t> chosen,
                           bool isForward) {
  if (!chosen.has_value()) {
    return isForward ? 0 : layout.entries - 1;
  }
  return (*chosen + (isForward ? 1 : layout.entries - 1)) % layout.entries;
}

std::vector<std::uint32_t> trayMenuPixels(const TrayMenuLayout& layout, const AlphaBitmap& labels,
                                          int scale, std::optional<std::size_t> chosen) {
  std::vector<std::uint32_t> pixels(labels.pixels.size());
  std::size_t index = 0;
  for (int y = 0; y < labels.height; ++y) {
    const auto entry = trayMenuEntryAt(layout, 0, (y + 0.5) / scale);
    const bool isChosen = entry.has_value() && entry == chosen;
    for (int x = 0; x < labels.width; ++x, ++index) {
      const bool isEdge = x == 0 || y == 0 || x == labels.width - 1 || y == labels.height - 1;
      const Colour& below = isEdge ? edge : isChosen ? highlight : ground;
      pixels[index] = mix(below, labels.pixels[index]);
    }
  }
  return pixels;
}

}  // namespace vantora
