// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/xdg_folders.hpp"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace vantora {
namespace {

namespace fs = std::filesystem;

std::optional<fs::path> absolutePath(const std::optional<std::string>& text) {
  // Relative paths are invalid in these variables and are to be ignored.
  if (text && fs::path(*text).is_absolute()) {
    return fs::path(*text);
  }
  return std::nullopt;
}

}  // namespace

std::optional<fs::path> XdgFolders::home(const EnvironmentLookup& environment) {
  if (auto path = absolutePath(environment("HOME"))) {
    return path;
  }
  passwd entry{};
  passwd* found = nullptr;
  std::array<char, 4096> buffer{};
  if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 &&
      found != nullptr && found->pw_dir != nullptr) {
    return absolutePath(std::string(found->pw_dir));
  }
  return std::nullopt;
}

std::optional<std::string> processEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<fs::path> XdgFolders::configHome(const EnvironmentLookup& environment) {
  if (auto path = absolutePath(environment("XDG_CONFIG_HOME"))) {
    return path;
  }
  const auto userHome = home(environment);
  return userHome ? std::optional(*userHome / ".config") : std::nullopt;
}

std::vector<fs::path> XdgFolders::configDirs(const EnvironmentLookup& environment) {
  std::vector<fs::path> folders;
  for (const std::string& folder :
       splitList(environment("XDG_CONFIG_DIRS").value_or(std::string()), ':')) {
    if (auto path = absolutePath(folder)) {
      folders.push_back(*std::move(path));
    }
  }
  if (folders.empty()) {
    folders.emplace_back("/etc/xdg");
  }
  return folders;
}

std::vector<std::string> splitList(std::string_view list, char separator) {
  std::vector<std::string> parts;
  while (!list.empty()) {
    const std::size_t end = list.find(separator);
    if (end != 0) {
      parts.emplace_back(list.substr(0, end));
    }
    list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
  }
  return parts;
}

std::optional<fs::path> ownExecutable() {
  std::error_code error;
  std::string path = fs::read_symlink("/proc/self/exe", error).string();
  if (error) {
    return std::nullopt;
  }
  // What the kernel appends once the file was replaced (proc(5)).
  constexpr std::string_view deleted = " (deleted)";
  if (path.ends_with(deleted) && !fs::exists(path, error)) {
    path.resize(path.size() - deleted.size());
  }
  return fs::path(path);
}

}  // namespace vantora
