// SPDX-License-Identifier: MIT
#include "quota/codex/codex_executable_places.hpp"

#include "quota/assistant_executable.hpp"

namespace vantora::CodexExecutablePlaces {

std::vector<std::string> onLinux(std::string_view home) {
  return linuxPlaces(home, "codex");
}

std::vector<std::string> onMacOS() {
  return {
      "/Applications/ChatGPT.app/Contents/Resources/codex-cli/CodexCLI.app/Contents/MacOS/codex",
      "/opt/homebrew/bin/codex", "/usr/local/bin/codex"};
}

}  // namespace vantora::CodexExecutablePlaces
