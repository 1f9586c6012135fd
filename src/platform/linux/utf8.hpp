// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace vantora {

/// Takes the first character off `text`, which must not be empty. Bytes that are no
/// UTF-8 (RFC 3629: overlong, surrogate, cut off) give U+FFFD, one at a time.
[[nodiscard]] char32_t takeCharacter(std::string_view& text);

}  // namespace vantora
