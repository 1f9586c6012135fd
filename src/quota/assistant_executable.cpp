// SPDX-License-Identifier: MIT
#include "quota/assistant_executable.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "process/executable_file.hpp"

namespace vantora {
namespace {

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

// "v9.11.2" is lower than "v20.1.0": of two runs of digits the shorter one is the lower number.
bool isLowerVersion(std::string_view left, std::string_view right) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const auto digits = [&isDigit](std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) -
                                    text.begin());
  };
  while (!left.empty() && !right.empty()) {
    if (isDigit(left.front()) && isDigit(right.front()) && digits(left) != digits(right)) {
      return digits(left) < digits(right);
    }
    if (left.front() != right.front()) {
      return left.front() < right.front();
    }
    left.remove_prefix(1);
    right.remove_prefix(1);
  }
  return left.size() < right.size();
}

// The place itself, or the paths that its "*" matches.
std::vector<std::string> expanded(const std::string& place) {
  constexpr std::string_view wildcard = "/*/";
  const std::size_t position = place.find(wildcard);
  if (position == std::string::npos) {
    return {place};
  }
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(place.substr(0, position), error), end;
       !error && entry != end; entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end(),
            [](const auto& left, const auto& right) { return isLowerVersion(right, left); });
  for (std::string& name : names) {
    name.insert(0, place, 0, position + 1);
    name.append(place, position + wildcard.size() - 1);
  }
  return names;
}

}  // namespace

std::vector<std::string> linuxPlaces(std::string_view home, std::string_view name) {
  constexpr std::array<std::string_view, 7> userFolders{
      "/.local/bin",                 // the vendors' installers
      "/.npm-global/bin",            // npm with the prefix that its documents recommend
      "/.local/share/pnpm/bin",      // pnpm 11
      "/.local/share/pnpm",          // pnpm before 11
      "/.bun/bin",                   // bun
      "/.volta/bin",                 // Volta's shims, links that go by their own names
      "/.nvm/versions/node/*/bin"};  // npm under nvm
  constexpr std::array<std::string_view, 3> machineFolders{
      "/home/linuxbrew/.linuxbrew/bin",  // Homebrew
      "/usr/local/bin",                  // npm with the default prefix of Node's own builds
      "/usr/bin"};                       // npm with Debian's Node, and packages
  std::vector<std::string> places;
  places.reserve(userFolders.size() + machineFolders.size());
  for (const std::string_view folder : userFolders) {
    places.push_back(std::string(home).append(folder).append("/").append(name));
  }
  for (const std::string_view folder : machineFolders) {
    places.push_back(std::string(folder).append("/").append(name));
  }
  return places;
}

std::optional<AssistantExecutable> resolveAssistant(const std::optional<std::string>& selectedPath,
                                                    std::span<const std::string> places) {
  const auto found = [](const std::string& candidate) -> std::optional<AssistantExecutable> {
    auto path = firstExecutableFile(std::span(&candidate, 1));
    return path ? std::optional(AssistantExecutable{std::move(*path), candidate}) : std::nullopt;
  };
  if (selectedPath) {
    return found(*selectedPath);
  }
  for (const std::string& place : places) {
    for (const std::string& candidate : expanded(place)) {
      if (auto executable = found(candidate)) {
        return executable;
      }
    }
  }
  return std::nullopt;
}

std::string searchPathFor(const AssistantExecutable& executable, std::string_view inherited) {
  // What execvp(3) searches where there is no PATH.
  constexpr std::string_view standardPath = "/bin:/usr/bin";
  std::string path = folderOf(executable.foundPath);
  if (const std::string resolved = folderOf(executable.path); resolved != path) {
    path += ':' + resolved;
  }
  path += ':';
  path += inherited.empty() ? standardPath : inherited;
  return path;
}

}  // namespace vantora
