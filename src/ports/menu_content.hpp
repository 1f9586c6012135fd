// SPDX-License-Identifier: MIT
//
// A small menu, and a tool tip, that the agent wants shown, as values.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantora {

struct MenuEntry {
  std::int32_t id = 0;  ///< What is told of the entry when it is chosen; unique in its menu.
  std::string label;
  bool operator==(const MenuEntry&) const = default;
};

/// A place on the screen, in the display's own pixels from its upper left corner.
struct ScreenPoint {
  int x = 0;
  int y = 0;
  bool operator==(const ScreenPoint&) const = default;
};
struct ScreenArea {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  bool operator==(const ScreenArea&) const = default;
};

struct MenuContent {
  std::vector<MenuEntry> entries;  ///< From the top.
  ScreenPoint pointer;             ///< Where the click was.
  ScreenArea item;                 ///< What was clicked: not to be covered.
  bool isDark = false;             ///< Whether the desktop prefers dark colours.
  bool operator==(const MenuContent&) const = default;
};

struct ToolTipContent {
  std::string text;  ///< Lines parted by "\n".
  ScreenPoint pointer;
  bool isDark = false;
  bool operator==(const ToolTipContent&) const = default;
};

}  // namespace vantora
