// SPDX-License-Identifier: MIT
//
// A menu at the pointer, for a status item whose panel has no menus of its own.
#pragma once

#include <cstdint>
#include <functional>

#include "ports/menu_content.hpp"

namespace vantora {

/// At most one menu is open. Lives on the main thread.
class PopupMenu {
 public:
  virtual ~PopupMenu() = default;

  /// The id of the chosen entry; called at most once, and not at all when the menu is
  /// given up or could not be opened. Never from inside of open() or close().
  using OnChosen = std::function<void(std::int32_t id)>;

  /// Opens the menu, in place of one that is open. Returns at once. No button of the
  /// pointer may be held then: the menu takes the pointer to itself.
  virtual void open(const MenuContent& content, OnChosen onChosen) = 0;

  /// Closes the menu, if one is open or on its way: nothing is chosen any more.
  virtual void close() = 0;
};

}  // namespace vantora
