// SPDX-License-Identifier: MIT
//
// The identity of a module (RFC 4122). Written as canonical upper-case hyphenated
// text, read in either case.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace vantora {

class UUID {
 public:
  constexpr UUID() = default;
  explicit constexpr UUID(const std::array<std::uint8_t, 16>& bytes) : bytes_(bytes) {}

  /// A fresh random (version 4) identity from the system's random source.
  [[nodiscard]] static UUID random();
  /// Nothing unless `text` is the 36-character hyphenated form.
  [[nodiscard]] static std::optional<UUID> parse(std::string_view text);
  [[nodiscard]] std::string text() const;
  /// The same behind what `target` holds.
  void appendTo(std::string& target) const;

  bool operator==(const UUID&) const = default;
  /// By bytes. Spelled out because the standard library of macOS 13's time does not order
  /// arrays by itself.
  std::strong_ordering operator<=>(const UUID& other) const {
    return std::memcmp(bytes_.data(), other.bytes_.data(), bytes_.size()) <=> 0;
  }

 private:
  std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace vantora
