// SPDX-License-Identifier: MIT
#include "runtime/executable_file.hpp"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace vantora {

std::optional<std::string> firstExecutableFile(std::span<const std::string> candidates) {
  for (const std::string& candidate : candidates) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::canonical(candidate, error);
    if (!error && std::filesystem::is_regular_file(path, error) &&
        access(path.c_str(), X_OK) == 0) {
      return path.string();
    }
  }
  return std::nullopt;
}

}  // namespace vantora
