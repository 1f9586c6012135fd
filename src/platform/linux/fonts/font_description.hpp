// SPDX-License-Identifier: MIT
#pragma once

#include "platform/linux/text/font_report.hpp"

namespace vantora {

/// The user's typefaces as lookUpFonts() finds them now, and the libraries that found them.
[[nodiscard]] FontReport describeFonts();

}  // namespace vantora
