// SPDX-License-Identifier: MIT
//
// Why the item looks as it does on this panel, in words. Pure.
#pragma once

#include <cstdint>

#include "platform/linux/panels/ink.hpp"
#include "platform/linux/status_item/status_notifier_watcher.hpp"
#include "ports/status_item.hpp"

namespace vantora {

/// What the item's decisions were made from.
struct StatusItemFacts {
  enum class Tray : std::uint8_t {
    unreachable,  ///< There is no display, or it is not to be used.
    unused,       ///< Not asked, or it takes no window.
    starting,     ///< Asked, and it has not answered yet.
    docked,       ///< It shows the whole picture.
    squeezed,     ///< It shows less.
  };

  StatusNotifierWatcher::State watcher;
  ColorScheme colorScheme = ColorScheme::noPreference;
  bool isVertical = false;       ///< The panel is a column.
  bool isTrayTooNarrow = false;  ///< The panel's tray gave too little width, and was left.
  Tray tray = Tray::unreachable;
  int trayScale = 1;                ///< In the tray: pixels in a point.
  Ink trayInk = Ink::lightOnPlate;  ///< In the tray: of the latest picture.
};

/// The form that the item has on `panel`: a column has no room for a wide picture.
[[nodiscard]] PictureForm formOn(const Panel& panel, bool isVertical);

[[nodiscard]] StatusItemReport describe(const StatusItemFacts& facts);

}  // namespace vantora
