// SPDX-License-Identifier: MIT
//
// Reading attributes of sysfs: small text files that a driver writes at the moment of the
// read. Nothing here blocks on another kind of file in their place: a pipe, a directory or a file
// of any length gives an error.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/unique_fd.hpp"

namespace vantora::Sysfs {

/// Longer than every number and keyword that drivers write; what does not fit is refused.
using Buffer = std::array<char, 128>;

/// The text of an attribute without its line end, in the buffer of the read; or an errno.
/// ENOENT: there is no such attribute. ENODEV: the device is gone, though the file may still
/// be open. ENODATA: the driver has no value at the moment. EFBIG: longer than the buffer.
struct Text {
  int error = 0;
  std::string_view text;
};

/// The same as a whole number. EINVAL: empty or no number; ERANGE: more than 64 bits.
struct Number {
  int error = 0;
  std::int64_t value = 0;

  [[nodiscard]] std::optional<std::int64_t> ifRead() const {
    return error == 0 ? std::optional(value) : std::nullopt;
  }
};

/// A directory to read attributes in; none when it is not there.
[[nodiscard]] UniqueFd openDirectory(const std::string& path);
[[nodiscard]] UniqueFd openDirectory(int parent, const char* name);

/// The names in the directory, sorted, without those that begin with a dot.
[[nodiscard]] std::vector<std::string> namesIn(const std::string& path);

/// Opens an attribute in order to keep it; -1 (with errno) when it cannot be opened.
[[nodiscard]] UniqueFd open(int directory, const char* name);

/// Reads a kept attribute from its beginning: one system call.
[[nodiscard]] Text readText(int file, Buffer& buffer);
[[nodiscard]] Number readNumber(int file);

/// Opens, reads and closes.
[[nodiscard]] Text readText(int directory, const char* name, Buffer& buffer);
[[nodiscard]] Number readNumber(int directory, const char* name);

/// The kernel's name of the driver behind the device that the directory is of: "nvme", "iwlwifi".
/// Empty where none is told, as for virtual devices.
[[nodiscard]] std::string driverName(int directory);

/// A decimal number with an optional sign and nothing else.
[[nodiscard]] Number parseNumber(std::string_view text);

}  // namespace vantora::Sysfs
