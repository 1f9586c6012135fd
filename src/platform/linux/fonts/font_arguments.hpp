// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "platform/linux/fonts/font_selection.hpp"
#include "platform/linux/text/glyph_message.hpp"

namespace vantora {

/// Never empty, also for a selection without fonts.
[[nodiscard]] FontArguments toArguments(const FontSelection& selection);
/// Nothing for arguments that toArguments() does not make.
[[nodiscard]] std::optional<FontSelection> parseFonts(const FontArguments& arguments);

}  // namespace vantora
