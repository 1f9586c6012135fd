// SPDX-License-Identifier: MIT
#include <charconv>
#include <optional>

#include "runtime/resident_memory.hpp"

namespace vantora {
namespace {

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

std::string_view takeField(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const std::string_view field = line.substr(0, line.find(' '));
  line.remove_prefix(field.size());
  return field;
}

std::optional<std::size_t> hexadecimal(std::string_view text) {
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(value)
                                                                  : std::nullopt;
}

// "7f00-7f10 r-xp 00001000 fe:00 1234   /usr/lib/libc.so.6"
std::optional<MemoryRange> unwritableFileRange(std::string_view line) {
  const std::string_view addresses = takeField(line);
  const std::string_view permissions = takeField(line);
  takeField(line);  // offset
  takeField(line);  // device
  takeField(line);  // inode
  const std::string_view path = takeField(line);
  const std::size_t dash = addresses.find('-');
  if (dash == std::string_view::npos || permissions.size() != 4 || permissions[0] != 'r' ||
      permissions[1] != '-' || permissions[3] != 'p' || !path.starts_with('/')) {
    return std::nullopt;
  }
  const auto begin = hexadecimal(addresses.substr(0, dash));
  const auto end = hexadecimal(addresses.substr(dash + 1));
  if (!begin || !end || *end <= *begin) {
    return std::nullopt;
  }
  return MemoryRange{*begin, *end - *begin};
}

}  // namespace

std::vector<MemoryRange> unwrittenFileRanges(std::string_view smaps) {
  std::vector<MemoryRange> ranges;
  std::optional<MemoryRange> current;
  while (!smaps.empty()) {
    std::string_view line = takeLine(smaps);
    std::string_view rest = line;
    const std::string_view name = takeField(rest);
    if (!name.ends_with(':')) {
      current = unwritableFileRange(line);
    } else if (name == "Anonymous:" && current) {
      // Without this line nobody knows whether the range was written to.
      if (takeField(rest) == "0") {
        ranges.push_back(*current);
      }
      current.reset();
    }
  }
  return ranges;
}

}  // namespace vantora
