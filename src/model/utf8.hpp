// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vantora {

/// Takes the first character off `text`, which must not be empty. An ill-formed part gives
/// U+FFFD, one for each maximal subpart as below.
[[nodiscard]] char32_t takeCharacter(std::string_view& text);

/// `bytes` with every ill-formed part replaced by U+FFFD, one for each maximal subpart
/// as the Unicode Standard recommends (section 3.9, "U+FFFD Substitution of Maximal
/// Subparts"). Well-formed UTF-8 comes back unchanged.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

}  // namespace vantora
