// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Keeps the application's colours with the desktop's choice of light or dark where the
/// toolkit does not do so by itself. Once, with the application just made.
void followColorScheme();

/// Colours for a dark desktop, or the style's own ones again.
void useDarkColors(bool isDark);

}  // namespace vantora
