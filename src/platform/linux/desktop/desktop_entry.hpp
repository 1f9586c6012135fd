// SPDX-License-Identifier: MIT
//
// The desktop's ".desktop" files (freedesktop.org, Desktop Entry 1.5), as far as starting a
// program with the session needs them (Desktop Application Autostart 0.5).
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantora::DesktopEntry {

/// The keys of the group "Desktop Entry" with their values as written, the last one
/// where a key occurs twice. Nothing for a file that is malformed: without that group at
/// its head, or with a line that is neither a group, a key, a comment nor empty.
using Keys = std::map<std::string, std::string, std::less<>>;
[[nodiscard]] std::optional<Keys> parse(std::string_view text);

enum class Start {
  starts,     ///< A session of one of the desktops starts it.
  off,        ///< Switched off, hidden, or meant for other desktops.
  notFound,   ///< Its program does not exist.
  malformed,  ///< No entry of a program at all.
};

/// What a session of the desktops (the parts of $XDG_CURRENT_DESKTOP) does with the
/// entry. `isExecutable` answers for a path, or for a name that the search path is for.
[[nodiscard]] Start startOf(const Keys& keys, const std::vector<std::string>& currentDesktops,
                            const std::function<bool(const std::string&)>& isExecutable);

/// The file that starts `executable`, an absolute path, with the session.
[[nodiscard]] std::string autostartFile(std::string_view executable);

/// The file that switches an entry of the system off for this user.
[[nodiscard]] std::string hidingFile();

}  // namespace vantora::DesktopEntry
