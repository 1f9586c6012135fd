// SPDX-License-Identifier: MIT
#include "platform/linux/sysfs/sysfs.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <memory>

namespace vantora::Sysfs {
namespace {

Text errorText(int error) {
  return {error, {}};
}

}  // namespace

UniqueFd openDirectory(const std::string& path) {
  return openDirectory(AT_FDCWD, path.c_str());
}

UniqueFd openDirectory(int parent, const char* name) {
  return UniqueFd(::openat(parent, name, O_PATH | O_DIRECTORY | O_CLOEXEC));
}

std::vector<std::string> namesIn(const std::string& path) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(::opendir(path.c_str()), &::closedir);
  if (!directory) {
    return names;
  }
  while (const dirent* entry = ::readdir(directory.get())) {
    if (entry->d_name[0] != '.') {
      names.emplace_back(entry->d_name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

UniqueFd open(int directory, const char* name) {
  // O_NONBLOCK: a pipe in the attribute's place opens at once, and reads as an error.
  return UniqueFd(::openat(directory, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

Text readText(int file, Buffer& buffer) {
  const ssize_t size = ::pread(file, buffer.data(), buffer.size(), 0);
  if (size < 0) {
    return errorText(errno);
  }
  if (static_cast<std::size_t>(size) == buffer.size()) {
    return errorText(EFBIG);
  }
  std::string_view text(buffer.data(), static_cast<std::size_t>(size));
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
    text.remove_suffix(1);
  }
  return {0, text};
}

Number readNumber(int file) {
  Buffer buffer;  // NOLINT: the read fills it
  const Text text = readText(file, buffer);
  return text.error == 0 ? parseNumber(text.text) : Number{text.error, 0};
}

Text readText(int directory, const char* name, Buffer& buffer) {
  const UniqueFd file = open(directory, name);
  return file ? readText(file.get(), buffer) : errorText(errno);
}

Number readNumber(int directory, const char* name) {
  const UniqueFd file = open(directory, name);
  return file ? readNumber(file.get()) : Number{errno, 0};
}

std::string driverName(int directory) {
  std::array<char, PATH_MAX> target;  // NOLINT: the call fills it
  // A chip of a device that is itself of a class (a disk's) is plugged to that one.
  for (const char* link : {"device/driver", "device/device/driver"}) {
    const ssize_t size = ::readlinkat(directory, link, target.data(), target.size());
    if (size > 0) {
      const std::string_view path(target.data(), static_cast<std::size_t>(size));
      return std::string(path.substr(path.rfind('/') + 1));
    }
  }
  return {};
}

Number parseNumber(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) {
      return {EINVAL, 0};
    }
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    return {ERANGE, 0};
  }
  if (error != std::errc() || end != text.data() + text.size()) {
    return {EINVAL, 0};
  }
  return {0, value};
}

}  // namespace vantora::Sysfs
