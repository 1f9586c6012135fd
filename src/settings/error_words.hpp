// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace vantora {

/// The meaning of an errno(3) that files and processes give, in Portuguese; empty for others.
[[nodiscard]] std::string_view portugueseErrorText(int errorNumber);

}  // namespace vantora
