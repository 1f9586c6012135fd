// SPDX-License-Identifier: MIT
#include "quota/claude/claude_executable_places.hpp"

#include "quota/assistant_executable.hpp"

namespace vantora::ClaudeExecutablePlaces {
namespace {

// The vendor's earlier installation for one user, which its installer replaced.
constexpr const char* earlierInstallation = "/.claude/local/claude";

}  // namespace

std::vector<std::string> onLinux(std::string_view home) {
  std::vector<std::string> places = linuxPlaces(home, "claude");
  places.push_back(std::string(home) + earlierInstallation);
  return places;
}

std::vector<std::string> onMacOS(std::string_view home) {
  return {std::string(home) + "/.local/bin/claude", "/opt/homebrew/bin/claude",
          "/usr/local/bin/claude", std::string(home) + earlierInstallation};
}

}  // namespace vantora::ClaudeExecutablePlaces
