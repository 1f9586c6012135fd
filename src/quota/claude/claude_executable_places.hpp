// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantora::ClaudeExecutablePlaces {

/// Where Claude Code installs itself, in search order. `home` is the user's home folder without a
/// trailing separator. Any thread.
[[nodiscard]] std::vector<std::string> onLinux(std::string_view home);
[[nodiscard]] std::vector<std::string> onMacOS(std::string_view home);

}  // namespace vantora::ClaudeExecutablePlaces
