// SPDX-License-Identifier: MIT
//
// The login item on Linux: the file vantora.desktop among those that the desktop starts
// with the session.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/desktop/xdg_folders.hpp"
#include "settings/login_item.hpp"

namespace vantora {

/// The user's file decides; where there is none, one that a package installed for all
/// users. What is there but switched off, meant for other desktops or malformed counts as
/// not registered; an entry whose program is gone as not found.
class AutostartLoginItem final : public LoginItem {
 public:
  struct Places {
    std::filesystem::path userFolder;  ///< Usually ~/.config/autostart; empty without a home.
    std::vector<std::filesystem::path> systemFolders;  ///< The most important first.
    std::vector<std::string> currentDesktops;          ///< The parts of $XDG_CURRENT_DESKTOP.
    std::vector<std::string> searchPath;               ///< The parts of $PATH.
    std::filesystem::path executable;                  ///< What a session is to start.
  };
  /// Those of this session, starting `executable`.
  [[nodiscard]] static Places placesOf(std::filesystem::path executable,
                                       const EnvironmentLookup& environment = processEnvironment);

  explicit AutostartLoginItem(Places places) : places_(std::move(places)) {}

  [[nodiscard]] LoginItemStatus status() override;
  [[nodiscard]] std::optional<Fault> setRegistered(bool registered) override;

 private:
  [[nodiscard]] std::filesystem::path userFile() const;
  [[nodiscard]] LoginItemStatus statusOf(const std::filesystem::path& file) const;
  [[nodiscard]] LoginItemStatus systemStatus() const;
  [[nodiscard]] bool isExecutable(const std::string& program) const;

  Places places_;
};

}  // namespace vantora
