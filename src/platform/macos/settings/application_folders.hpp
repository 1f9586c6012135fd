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

/// The program `name` of the application "NAME.app" among the helpers inside of this
/// program's bundle. Whether it is there shows when it is started.
[[nodiscard]] std::filesystem::path bundledHelper(std::string_view name);

}  // namespace vantora
