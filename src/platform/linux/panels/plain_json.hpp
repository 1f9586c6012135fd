// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vantora {

/// JSON as people write it by hand, made such as parseJson() takes: comments of both kinds, a
/// comma before a closing bracket, and control characters inside of texts become spaces. Of the
/// same length; never fails, and what is no JSON at all stays so. Pure.
[[nodiscard]] std::string plainJson(std::string_view text);

}  // namespace vantora
