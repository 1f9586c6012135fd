// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantora {

/// The user's Application Support folder, as the file manager gives it; it need not exist
/// yet. Nothing when there is none.
[[nodiscard]] std::optional<std::filesystem::path> applicationSupportFolder();

/// The user's home folder, without a trailing separator.
[[nodiscard]] std::string homeFolder();

/// A program that lies beside this one in the bundle; empty when there is none.
[[nodiscard]] std::filesystem::path bundledProgram(std::string_view name);

}  // namespace vantora
