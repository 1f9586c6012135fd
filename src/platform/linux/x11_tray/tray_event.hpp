// SPDX-License-Identifier: MIT
//
// What the display's thread reports to the main thread, as values.
#pragma once

#include <cstdint>
#include <variant>

#include "platform/linux/panels/ink.hpp"
#include "ports/menu_content.hpp"

namespace vantora {

enum class TrayButton : std::uint8_t { left, middle, right };

/// A button was pressed and released inside the window. None is held any more.
struct TrayClick {
  TrayButton button = TrayButton::left;
  ScreenPoint pointer;
  ScreenArea window;
  std::uint32_t time = 0;  ///< The X server's, in milliseconds.
};

/// There is no display, or it is gone.
struct DisplayLost {};
/// Another tray, none, or one that is oriented differently: dock anew.
struct TrayChanged {};
/// No tray runs, or its pixels cannot be drawn.
struct TrayMissing {};
/// The tray was asked to take a new window in. What is reported later is about that one.
struct TrayAsked {
  int scale = 1;            ///< Pixels in a point.
  bool isVertical = false;  ///< The tray arranges its icons in a column.
};
/// The answer to look(), for as long as nothing is docked.
struct TraySeen {
  bool isVertical = false;
};
/// The tray has taken the window in, and it is mapped.
struct WindowEmbedded {};
/// The tray gave the window up; it is destroyed.
struct WindowReturned {};
/// The window's size in pixels has changed.
struct WindowResized {
  int width = 0;
  int height = 0;
};
/// The answer to measure(): the size now, zero for a window that is gone.
struct WindowMeasured {
  int width = 0;
  int height = 0;
};
/// A part of the window, or the tray's colour, has changed: draw it again.
struct WindowExposed {};
/// The answer to draw(): the server has taken the picture.
struct WindowDrawn {
  Ink ink = Ink::lightOnPlate;  ///< What it was drawn with.
};
struct PointerEntered {
  ScreenPoint pointer;
};
struct PointerLeft {};

using TrayEvent = std::variant<DisplayLost, TrayChanged, TrayMissing, TrayAsked, TraySeen,
                               WindowEmbedded, WindowReturned, WindowResized, WindowMeasured,
                               WindowExposed, WindowDrawn, TrayClick, PointerEntered, PointerLeft>;

}  // namespace vantora
