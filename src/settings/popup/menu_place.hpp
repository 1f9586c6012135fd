// SPDX-License-Identifier: MIT
//
// Where a menu opens, in the toolkit's own pixels unless said otherwise. Nothing here but
// allScreens() looks at the display.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

#include "ports/menu_content.hpp"

namespace vantora {

/// A screen as the toolkit knows it: its corner is in the display's pixels, its size in
/// the toolkit's, of which each covers `ratio` of the display's.
struct MenuScreen {
  QRect area;
  QRect available;  ///< What panels leave of it.
  double ratio = 1;
};

/// The screens there are now.
[[nodiscard]] std::vector<MenuScreen> allScreens();

/// The screen that holds the place, in the display's pixels; the first one for a place on
/// none. There must be one.
[[nodiscard]] const MenuScreen& screenAt(const std::vector<MenuScreen>& screens, ScreenPoint place);

/// A place and an area of the display's on this screen.
[[nodiscard]] QPoint placeOn(const MenuScreen& screen, ScreenPoint place);
[[nodiscard]] QRect areaOn(const MenuScreen& screen, const ScreenArea& area);

/// The menu's upper left corner: at the pointer's column, below the item or, where that
/// has no room, above it; on top of it only where neither has. Inside of what is available.
[[nodiscard]] QPoint menuPlace(QSize menu, QPoint pointer, const QRect& item,
                               const QRect& available);

}  // namespace vantora
