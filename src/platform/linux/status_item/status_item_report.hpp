// SPDX-License-Identifier: MIT
//
// Why the item looks as it does on this panel, in words. Pure.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/panels/ink.hpp"
#include "platform/linux/status_item/status_notifier_watcher.hpp"
#include "platform/linux/x11_tray/xembed_window.hpp"
#include "ports/status_item.hpp"

namespace vantora {

/// What the item's decisions were made from.
struct StatusItemFacts {
  StatusNotifierWatcher::State watcher;
  ColorScheme colorScheme = ColorScheme::noPreference;
  bool isVertical = false;       ///< The panel is a column.
  int onlyScale = 2;             ///< Pixels in a point, where one picture is offered alone.
  bool isTrayTooNarrow = false;  ///< The panel's tray gave too little width, and was left.
  bool isRowOfModules = false;   ///< Each module is an item of its own.
  /// Nothing where there is no display, or it is not to be used.
  std::optional<XEmbedWindow::State> tray = std::nullopt;
  int trayScale = 1;                ///< In the tray: pixels in a point.
  Ink trayInk = Ink::lightOnPlate;  ///< In the tray: of the latest picture.
};

[[nodiscard]] StatusItemReport describe(const StatusItemFacts& facts);

/// Panel and form in a line, for the log.
[[nodiscard]] std::string lineOf(const StatusItemFacts& facts);

}  // namespace vantora
