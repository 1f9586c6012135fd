// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/linux/font_selection.hpp"

namespace vantora {

/// What `lookUp` answers, called in a forked child whose memory goes with it: fontconfig
/// and the fonts that it reads leave half a megabyte behind in whoever asks them. A
/// lookup that crashes over a damaged font answers an empty selection. Where no child can
/// be started, the call is made here.
///
/// Waits for the child. Call it at start, before there are threads.
[[nodiscard]] FontSelection lookUpApart(const std::function<FontSelection()>& lookUp);

}  // namespace vantora
