// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace vantora {

/// Whether a byte of UTF-8 begins a character (RFC 3629, section 3).
[[nodiscard]] constexpr bool beginsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

/// How many terminal cells the text takes. Every character of our texts takes one.
[[nodiscard]] constexpr std::size_t cellCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

/// The text without what does not fit into `most` cells.
[[nodiscard]] inline std::string cutToCells(std::string text, std::size_t most) {
  std::size_t seen = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (beginsCharacter(text[index]) && seen++ == most) {
      text.resize(index);
      break;
    }
  }
  return text;
}

}  // namespace vantora
