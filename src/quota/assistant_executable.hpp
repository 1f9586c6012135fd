// SPDX-License-Identifier: MIT
//
// The command-line assistant that a client runs. Any thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantora {

struct AssistantExecutable {
  std::string path;       ///< Absolute, with symbolic links resolved.
  std::string foundPath;  ///< Where it was found: `path`, or the link that leads to it.

  bool operator==(const AssistantExecutable&) const = default;
};

/// The executable that the user selected, or the first of `places` (absolute paths) when none is
/// selected. There is no fallback to `places` for a selected path that is not executable. A "*" as
/// a folder of a place matches every folder there, the highest version first.
[[nodiscard]] std::optional<AssistantExecutable> resolveAssistant(
    const std::optional<std::string>& selectedPath, std::span<const std::string> places);

/// Where the command-line tool `name` can be on Linux, in search order: where its vendor and the
/// package managers install it for the user, then for the machine. `home` is the user's home
/// folder without a trailing separator.
[[nodiscard]] std::vector<std::string> linuxPlaces(std::string_view home, std::string_view name);

/// The PATH for `executable`: the folder where it was found and the folder of the resolved file,
/// then `inherited`. Package managers install scripts that begin with "#!/usr/bin/env node" beside
/// their node, and a program that the desktop starts has a PATH without those folders.
[[nodiscard]] std::string searchPathFor(const AssistantExecutable& executable,
                                        std::string_view inherited);

}  // namespace vantora
