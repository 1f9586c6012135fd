// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "platform/linux/status_item/posted_actions.hpp"
#include "platform/linux/x11_tray/xembed_window.hpp"
#include "ports/popup_menu.hpp"
#include "ports/tool_tip.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// What the pointer does on the item in an X11 tray, which shows neither a menu nor a tool tip
/// itself. Lives on the main thread.
class TrayPointer {
 public:
  /// What opens there what a panel would.
  struct Popups {
    PopupMenu& menu;
    ToolTip& toolTip;
  };
  /// How the item is now.
  struct Item {
    std::function<std::string()> toolTip;
    std::function<bool()> isDark;  ///< Whether the desktop prefers dark colours.
  };

  /// `queue`, `popups` and `actions` outlive it.
  TrayPointer(TaskQueue& queue, Popups popups, PostedActions& actions, Item item);
  TrayPointer(const TrayPointer&) = delete;
  TrayPointer& operator=(const TrayPointer&) = delete;

  void entered(ScreenPoint pointer);
  /// The pointer has left, or the window is gone from under it.
  void left();
  void clicked(const TrayClick& click);
  /// Takes menu and tool tip away.
  void close();

 private:
  void openMenu(const TrayClick& click);

  TaskQueue& queue_;
  Popups popups_;
  PostedActions& actions_;
  Item item_;
  TimerHandle hover_;
};

}  // namespace vantora
