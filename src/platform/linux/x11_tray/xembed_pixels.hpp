// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/linux/panels/ink.hpp"
#include "status/bitmap.hpp"

namespace vantora {

/// How a tray shows windows.
enum class TrayDepth : std::uint8_t {
  opaque,       ///< 24 bits: whatever is not drawn would be a hole, so a plate fills it all.
  translucent,  ///< 32 bits, colours multiplied by alpha.
};

/// The template as pixels of an X image in the machine's byte order.
[[nodiscard]] std::vector<std::uint32_t> xPixels(const AlphaBitmap& bitmap, Ink ink,
                                                 TrayDepth depth);

/// The ink for a tray that publishes its text colour (_NET_SYSTEM_TRAY_COLORS: red,
/// green and blue of the foreground first, 16 bits each); on a plate where it publishes none.
[[nodiscard]] Ink trayInk(std::span<const std::uint32_t> colours);

/// Pixels in a point by the X resources (RESOURCE_MANAGER), from "Xft.dpi": 1 at 96 and
/// without that resource; 1 to 4.
[[nodiscard]] int scaleFromResources(std::string_view resources);

}  // namespace vantora
