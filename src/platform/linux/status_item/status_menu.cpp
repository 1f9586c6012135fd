// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_menu.hpp"

namespace vantora {

std::vector<StatusMenuEntry> statusMenu(bool isPaused) {
  return {
      {StatusMenuCommand::openSettings, "Configurações…"},
      {StatusMenuCommand::togglePause, isPaused ? "Retomar" : "Pausar"},
      {StatusMenuCommand::quit, "Sair"},
  };
}

std::optional<StatusMenuCommand> statusMenuCommand(std::int32_t id) {
  for (const StatusMenuEntry& entry : statusMenu(false)) {
    if (static_cast<std::int32_t>(entry.command) == id) {
      return entry.command;
    }
  }
  return std::nullopt;
}

}  // namespace vantora
