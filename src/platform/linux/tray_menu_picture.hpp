// SPDX-License-Identifier: MIT
//
// The menu beside a docked window as a picture: a tray has no menu protocol, so this one
// is drawn here. Pure functions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "status/bitmap.hpp"
#include "status/status_presentation.hpp"

namespace vantora {

/// Sizes in points.
struct TrayMenuLayout {
  double width = 0;
  double height = 0;
  std::size_t entries = 0;
  StatusImage texts;  ///< All labels in their places.
};

[[nodiscard]] TrayMenuLayout layOutTrayMenu(const std::vector<std::string_view>& labels,
                                            TextEngine& engine);

/// The entry at a place in points from the upper left corner; nothing on the rim and
/// outside of the menu.
[[nodiscard]] std::optional<std::size_t> trayMenuEntryAt(const TrayMenuLayout& layout, double x,
                                                         double y);

/// The entry after (or before) the chosen one, round the ends; the first (or last) one
/// when none is chosen.
[[nodiscard]] std::size_t neighbourEntry(const TrayMenuLayout& layout,
                                         std::optional<std::size_t> chosen, bool isForward);

/// The menu as pixels of an opaque X image. `labels` is layout.texts at this scale.
[[nodiscard]] std::vector<std::uint32_t> trayMenuPixels(const TrayMenuLayout& layout,
                                                        const AlphaBitmap& labels, int scale,
                                                        std::optional<std::size_t> chosen);

}  // namespace vantora
