// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/autostart_login_item.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/linux/desktop/desktop_entry.hpp"
#include "settings/error_text.hpp"
#include "settings/file_io.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

constexpr const char* fileName = "vantora.desktop";
constexpr std::size_t maxEntryBytes = 65'536;

}  // namespace

AutostartLoginItem::Places AutostartLoginItem::placesOf(fs::path executable,
                                                        const EnvironmentLookup& environment) {
  Places places;
  if (const auto home = XdgFolders::configHome(environment)) {
    places.userFolder = *home / "autostart";
  }
  for (const fs::path& folder : XdgFolders::configDirs(environment)) {
    places.systemFolders.push_back(folder / "autostart");
  }
  places.currentDesktops =
      splitList(environment("XDG_CURRENT_DESKTOP").value_or(std::string()), ':');
  places.searchPath = splitList(environment("PATH").value_or(std::string()), ':');
  places.executable = std::move(executable);
  return places;
}

LoginItemStatus AutostartLoginItem::status() {
  std::error_code error;
  const fs::path file = userFile();
  return fs::symlink_status(file, error).type() == fs::file_type::not_found ? systemStatus()
                                                                            : statusOf(file);
}

std::optional<Fault> AutostartLoginItem::setRegistered(bool registered) {
  const fs::path file = userFile();
  if (places_.userFolder.empty()) {
    return Fault::failed(systemErrorText(ENOENT));
  }
  if (!registered && systemStatus() == LoginItemStatus::notRegistered) {
    // EISDIR for a folder on Linux, EPERM elsewhere (unlink(2)).
    if (::unlink(file.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
      return Fault::failed(systemErrorText(errno));
    }
    return std::nullopt;
  }
  if (auto fault = FileIO::makeFolder(places_.userFolder)) {
    return fault;
  }
  FileIO::WriteOptions options;
  options.permissions = FileIO::Permissions::kept;
  return FileIO::replaceFile(file,
                             registered ? DesktopEntry::autostartFile(places_.executable.string())
                                        : DesktopEntry::hidingFile(),
                             options);
}

fs::path AutostartLoginItem::userFile() const {
  return places_.userFolder / fileName;
}

LoginItemStatus AutostartLoginItem::statusOf(const fs::path& file) const {
  const auto content = FileIO::readFile(file, maxEntryBytes);
  if (!content) {
    return LoginItemStatus::notRegistered;
  }
  const auto keys = DesktopEntry::parse(*content);
  if (!keys) {
    return LoginItemStatus::notRegistered;
  }
  switch (DesktopEntry::startOf(*keys, places_.currentDesktops,
                                [this](const std::string& name) { return isExecutable(name); })) {
    case DesktopEntry::Start::starts:
      return LoginItemStatus::enabled;
    case DesktopEntry::Start::notFound:
      return LoginItemStatus::notFound;
    case DesktopEntry::Start::off:
    case DesktopEntry::Start::malformed:
      break;
  }
  return LoginItemStatus::notRegistered;
}

LoginItemStatus AutostartLoginItem::systemStatus() const {
  for (const fs::path& folder : places_.systemFolders) {
    std::error_code error;
    const fs::path file = folder / fileName;
    if (fs::exists(file, error)) {
      return statusOf(file);
    }
  }
  return LoginItemStatus::notRegistered;
}

bool AutostartLoginItem::isExecutable(const std::string& program) const {
  const auto runs = [](const fs::path& path) {
    const auto size = FileIO::fileSize(path);
    return size && *size && ::access(path.c_str(), X_OK) == 0;
  };
  if (program.find('/') != std::string::npos) {
    return fs::path(program).is_absolute() && runs(program);
  }
  return std::any_of(places_.searchPath.begin(), places_.searchPath.end(),
                     [&](const std::string& folder) { return runs(fs::path(folder) / program); });
}

}  // namespace vantora
