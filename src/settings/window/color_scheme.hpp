// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Keeps the application's colours with the desktop's choice of light or dark, also while
/// windows are open, where the toolkit does not do so by itself. Once, with the application
/// just made.
void followColorScheme();

/// Whether the application's colours are dark ones now: a platform theme may bring them.
[[nodiscard]] bool looksDark();

/// Colours for a dark desktop, or the style's own ones again. Nothing where they are in use.
void useDarkColors(bool isDark);

}  // namespace vantora
