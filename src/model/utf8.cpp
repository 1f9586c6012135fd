// SPDX-License-Identifier: MIT
#include "model/utf8.hpp"

#include <cstddef>
#include <cstdint>

namespace vantora {
namespace {

struct Part {
  std::size_t length;
  bool isWellFormed;
};

// The sequence at the front of `bytes` (not empty), or its longest prefix that could
// have begun one: Unicode Standard, table 3-7.
Part firstPart(std::string_view bytes) {
  const auto at = [&](std::size_t position) { return static_cast<std::uint8_t>(bytes[position]); };
  const std::uint8_t lead = at(0);
  if (lead < 0x80) {
    return {1, true};
  }
  if (lead < 0xC2 || lead > 0xF4) {
    return {1, false};
  }
  std::size_t length = 2;
  if (lead >= 0xF0) {
    length = 4;
  } else if (lead >= 0xE0) {
    length = 3;
  }
  // Some leads narrow their second byte: no overlong forms, no surrogates, nothing past
  // U+10FFFF.
  const std::uint8_t least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (bytes.size() < 2 || at(1) < least || at(1) > most) {
    return {1, false};
  }
  for (std::size_t position = 2; position < length; ++position) {
    if (position >= bytes.size() || (at(position) & 0xC0U) != 0x80U) {
      return {position, false};
    }
  }
  return {length, true};
}

}  // namespace

char32_t takeCharacter(std::string_view& text) {
  const Part part = firstPart(text);
  const std::string_view bytes = text.substr(0, part.length);
  text.remove_prefix(part.length);
  if (!part.isWellFormed) {
    return 0xFFFD;
  }
  // The lead byte has as many high bits set as the sequence has bytes, or none if it is
  // alone; every other byte carries six bits.
  const auto lead = static_cast<std::uint8_t>(bytes.front());
  char32_t character = bytes.size() == 1 ? lead : lead & (0x7FU >> bytes.size());
  for (const char byte : bytes.substr(1)) {
    character = character << 6U | (static_cast<std::uint8_t>(byte) & 0x3FU);
  }
  return character;
}

std::string repairedUtf8(std::string_view bytes) {
  std::string repaired;
  repaired.reserve(bytes.size());
  while (!bytes.empty()) {
    const Part part = firstPart(bytes);
    repaired += part.isWellFormed ? bytes.substr(0, part.length) : std::string_view("\uFFFD");
    bytes.remove_prefix(part.length);
  }
  return repaired;
}

}  // namespace vantora
