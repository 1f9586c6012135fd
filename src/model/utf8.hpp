// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vantora {

/// `bytes` with every ill-formed part replaced by U+FFFD, one for each maximal subpart
/// as the Unicode Standard recommends (section 3.9, "U+FFFD Substitution of Maximal
/// Subparts"). Well-formed UTF-8 comes back unchanged.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

}  // namespace vantora
