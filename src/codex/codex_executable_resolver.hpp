// SPDX-License-Identifier: MIT
//
// Finds the `codex` executable that the client starts. Any thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantora::CodexExecutableResolver {

/// Where Codex installs itself, in the order of the search. `home` is the user's home
/// folder without a trailing separator.
[[nodiscard]] std::vector<std::string> placesOnLinux(std::string_view home);
[[nodiscard]] std::vector<std::string> placesOnMacOS();

/// The absolute path of the executable, symbolic links resolved. The user's choice
/// stands alone: there is no falling back to `places` when it cannot be used.
[[nodiscard]] std::optional<std::string> resolve(const std::optional<std::string>& selectedPath,
                                                 std::span<const std::string> places);

}  // namespace vantora::CodexExecutableResolver
