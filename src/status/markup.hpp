// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vantora {

/// The text as Pango markup that shows it
/// (https://docs.gtk.org/Pango/pango_markup.html): "&", "<" and ">" escaped.
[[nodiscard]] std::string escapedForMarkup(std::string_view text);

}  // namespace vantora
