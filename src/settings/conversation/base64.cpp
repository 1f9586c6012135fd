// SPDX-License-Identifier: MIT
#include "settings/conversation/base64.hpp"

#include <array>

namespace vantora::Base64 {
namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t noDigit = 64;

constexpr auto digits = [] {
  std::array<std::uint8_t, 256> table{};
  table.fill(noDigit);
  for (std::size_t index = 0; index < alphabet.size(); ++index) {
    table[static_cast<unsigned char>(alphabet[index])] = static_cast<std::uint8_t>(index);
  }
  return table;
}();

}  // namespace

std::string encode(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t left = bytes.size() - at;
    const std::uint32_t group = static_cast<std::uint32_t>(bytes[at]) << 16U |
                                (left > 1 ? static_cast<std::uint32_t>(bytes[at + 1]) << 8U : 0U) |
                                (left > 2 ? bytes[at + 2] : 0U);
    text += alphabet[group >> 18U & 63U];
    text += alphabet[group >> 12U & 63U];
    text += left > 1 ? alphabet[group >> 6U & 63U] : '=';
    text += left > 2 ? alphabet[group & 63U] : '=';
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> decode(std::string_view text) {
  if (text.size() % 4 != 0) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  for (std::size_t at = 0; at < text.size(); at += 4) {
    const bool isLast = at + 4 == text.size();
    const std::size_t padding = !isLast || text[at + 3] != '=' ? 0 : (text[at + 2] == '=' ? 2 : 1);
    std::uint32_t group = 0;
    for (std::size_t index = 0; index < 4; ++index) {
      const std::uint8_t digit = index < 4 - padding
                                     ? digits[static_cast<unsigned char>(text[at + index])]
                                     : std::uint8_t{0};
      if (digit == noDigit) {
        return std::nullopt;
      }
      group = group << 6U | digit;
    }
    // Unused bits are zero in the canonical text.
    if ((group & ((1U << 8U * padding) - 1U)) != 0) {
      return std::nullopt;
    }
    for (std::size_t index = 0; index < 3 - padding; ++index) {
      bytes.push_back(static_cast<std::uint8_t>(group >> (16U - 8U * index)));
    }
  }
  return bytes;
}

}  // namespace vantora::Base64
