// SPDX-License-Identifier: MIT
#include "process/executable_file.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
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

bool needsShell(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return false;
  }
  std::array<char, 4> bytes{};
  file.read(bytes.data(), bytes.size());
  const std::string_view start(bytes.data(), static_cast<std::size_t>(file.gcount()));
  // elf(5); mach-o/loader.h and mach-o/fat.h: MH_MAGIC_64 and MH_MAGIC as a little-endian machine
  // writes them, FAT_MAGIC and FAT_MAGIC_64 as big-endian.
  constexpr std::array<std::string_view, 6> magics{"#!",
                                                   "\x7f"
                                                   "ELF",
                                                   "\xcf\xfa\xed\xfe",
                                                   "\xce\xfa\xed\xfe",
                                                   "\xca\xfe\xba\xbe",
                                                   "\xca\xfe\xba\xbf"};
  return std::none_of(magics.begin(), magics.end(),
                      [start](std::string_view magic) { return start.starts_with(magic); });
}

}  // namespace vantora
