// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantora::Base64 {

/// RFC 4648, section 4, with padding and without line breaks.
[[nodiscard]] std::string encode(const std::vector<std::uint8_t>& bytes);

/// Nothing unless `text` is exactly what encode() writes for some bytes.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> decode(std::string_view text);

}  // namespace vantora::Base64
