// SPDX-License-Identifier: MIT
#include "model/uuid.hpp"

#include <random>

namespace vantora {
namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenPlace(std::size_t index) {
  return index == 8 || index == 13 || index == 18 || index == 23;
}

std::optional<std::uint8_t> hexDigit(char character) {
  if (character >= '0' && character <= '9') {
    return static_cast<std::uint8_t>(character - '0');
  }
  if (character >= 'a' && character <= 'f') {
    return static_cast<std::uint8_t>(character - 'a' + 10);
  }
  if (character >= 'A' && character <= 'F') {
    return static_cast<std::uint8_t>(character - 'A' + 10);
  }
  return std::nullopt;
}

}  // namespace

UUID UUID::random() {
  std::random_device source;
  std::array<std::uint8_t, 16> bytes{};
  for (std::size_t index = 0; index < bytes.size(); index += 4) {
    std::uint32_t word = source();
    for (std::size_t part = 0; part < 4; ++part) {
      bytes[index + part] = static_cast<std::uint8_t>(word);
      word >>= 8;
    }
  }
  // RFC 4122, section 4.4: version 4, variant 10.
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
  return UUID(bytes);
}

std::optional<UUID> UUID::parse(std::string_view text) {
  if (text.size() != textLength) {
    return std::nullopt;
  }
  std::array<std::uint8_t, 16> bytes{};
  std::size_t digits = 0;
  for (std::size_t index = 0; index < textLength; ++index) {
    if (isHyphenPlace(index)) {
      if (text[index] != '-') {
        return std::nullopt;
      }
      continue;
    }
    const auto digit = hexDigit(text[index]);
    if (!digit) {
      return std::nullopt;
    }
    std::uint8_t& byte = bytes[digits / 2];
    byte = static_cast<std::uint8_t>((byte << 4) | *digit);
    ++digits;
  }
  return UUID(bytes);
}

std::string UUID::text() const {
  std::string result;
  result.reserve(textLength);
  appendTo(result);
  return result;
}

void UUID::appendTo(std::string& target) const {
  static constexpr std::string_view hexDigits = "0123456789ABCDEF";
  const std::size_t start = target.size();
  for (const std::uint8_t byte : bytes_) {
    if (isHyphenPlace(target.size() - start)) {
      target += '-';
    }
    target += hexDigits[byte >> 4];
    target += hexDigits[byte & 0x0f];
  }
}

}  // namespace vantora
