// SPDX-License-Identifier: MIT
//
// Where the desktop keeps the user's files (freedesktop.org, XDG Base Directory 0.8).
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantora {

/// Looks up an environment variable; nothing when it is not set.
using EnvironmentLookup = std::function<std::optional<std::string>(const char* name)>;

/// This process's environment.
[[nodiscard]] std::optional<std::string> processEnvironment(const char* name);

namespace XdgFolders {

/// $HOME, or the user database's folder; absolute. Nothing when neither names one.
[[nodiscard]] std::optional<std::filesystem::path> home(
    const EnvironmentLookup& environment = processEnvironment);

/// $XDG_CONFIG_HOME, or .config in the user's home. Nothing without any home, neither in
/// the environment nor in the user database.
[[nodiscard]] std::optional<std::filesystem::path> configHome(
    const EnvironmentLookup& environment = processEnvironment);

/// $XDG_CONFIG_DIRS, or /etc/xdg: the system's folders, the most important one first.
[[nodiscard]] std::vector<std::filesystem::path> configDirs(
    const EnvironmentLookup& environment = processEnvironment);

}  // namespace XdgFolders

/// The parts of a list like $PATH, without empty ones.
[[nodiscard]] std::vector<std::string> splitList(std::string_view list, char separator);

/// The file that this process was started from, even if another has taken its place
/// since (an upgrade). Nothing where /proc is missing.
[[nodiscard]] std::optional<std::filesystem::path> ownExecutable();

}  // namespace vantora
