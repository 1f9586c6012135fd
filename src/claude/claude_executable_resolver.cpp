// SPDX-License-Identifier: MIT
#include "claude/claude_executable_resolver.hpp"

#include "runtime/executable_file.hpp"

namespace vantora::ClaudeExecutableResolver {

namespace {

std::vector<std::string> places(std::string_view home, const char* brew) {
  return {std::string(home) + "/.local/bin/claude", brew, "/usr/local/bin/claude",
          std::string(home) + "/.claude/local/claude"};
}

}  // namespace

std::vector<std::string> placesOnLinux(std::string_view home) {
  return places(home, "/home/linuxbrew/.linuxbrew/bin/claude");
}

std::vector<std::string> placesOnMacOS(std::string_view home) {
  return places(home, "/opt/homebrew/bin/claude");
}

std::optional<std::string> resolve(const std::optional<std::string>& selectedPath,
                                   std::span<const std::string> places) {
  return firstExecutableFile(selectedPath ? std::span(&*selectedPath, 1) : places);
}

}  // namespace vantora::ClaudeExecutableResolver
