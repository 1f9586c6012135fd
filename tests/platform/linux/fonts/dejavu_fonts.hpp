// SPDX-License-Identifier: MIT
//
// The fonts that pictures and measures are pinned to (Debian's fonts-dejavu-core).
#pragma once

#include "platform/linux/fonts/font_selection.hpp"

namespace vantora::test {

inline constexpr const char* dejavuSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
inline constexpr const char* dejavuSansMono = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";

/// As fontconfig chooses them: the regular faces, 20 lighter than medium.
inline FontSelection dejavuFonts() {
  constexpr int regular = 20;
  return {{{dejavuSans, 0, {}, regular}}, {{dejavuSansMono, 0, {}, regular}}};
}

}  // namespace vantora::test
