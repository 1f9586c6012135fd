// SPDX-License-Identifier: MIT
//
// The item's menu as values: what it shows, and what changes when sampling is paused.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vantora {

/// What a menu entry does. The numbers are the entries' ids on the bus; 0 is the menu.
enum class StatusMenuCommand : std::int32_t { openSettings = 1, togglePause = 2, quit = 3 };

struct StatusMenuEntry {
  StatusMenuCommand command;
  std::string_view label;
};

/// The entries from the top.
[[nodiscard]] std::vector<StatusMenuEntry> statusMenu(bool isPaused);

/// The command of an entry's id; nothing for ids that the menu does not have.
[[nodiscard]] std::optional<StatusMenuCommand> statusMenuCommand(std::int32_t id);

}  // namespace vantora
