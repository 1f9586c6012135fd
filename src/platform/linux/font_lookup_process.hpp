// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "platform/linux/font_selection.hpp"

namespace vantora {

/// What `lookUp` answers, called as answerApart() does it: fontconfig and the fonts that it
/// reads leave half a megabyte behind in whoever asks them. A lookup that crashes over a
/// damaged font answers an empty selection, and so does one that takes longer than `limit`:
/// a pipe among the font files blocks whoever opens it.
///
/// Call it at start, before there are threads, as lookUpApart([] { return lookUpFonts(); }).
[[nodiscard]] FontSelection lookUpApart(const std::function<FontSelection()>& lookUp,
                                        std::chrono::milliseconds limit = std::chrono::minutes{1});

}  // namespace vantora
