// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
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

}  // namespace vantora
