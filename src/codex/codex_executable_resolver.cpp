// SPDX-License-Identifier: MIT
#include "codex/codex_executable_resolver.hpp"

#include "runtime/executable_file.hpp"

namespace vantora::CodexExecutableResolver {

std::vector<std::string> placesOnLinux(std::string_view home) {
  return {std::string(home) + "/.local/bin/codex", "/usr/local/bin/codex", "/usr/bin/codex",
          "/home/linuxbrew/.linuxbrew/bin/codex"};
}

std::vector<std::string> placesOnMacOS() {
  return {
      "/Applications/ChatGPT.app/Contents/Resources/codex-cli/CodexCLI.app/Contents/MacOS/codex",
      "/opt/homebrew/bin/codex", "/usr/local/bin/codex"};
}

std::optional<std::string> resolve(const std::optional<std::string>& selectedPath,
                                   std::span<const std::string> places) {
  return firstExecutableFile(selectedPath ? std::span(&*selectedPath, 1) : places);
}

}  // namespace vantora::CodexExecutableResolver
