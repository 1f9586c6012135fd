// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace vantora {

/// What the desktop asks of an application's colours.
struct Colors {
  bool isDark = false;
  bool isHighContrast = false;

  bool operator==(const Colors&) const = default;
};

/// What a GTK theme's name says of its colours: those of high contrast are named "HighContrast"
/// (GNOME) or "ContrastHigh" (MATE), the dark one of either with "Inverse" behind it.
[[nodiscard]] Colors colorsOfTheme(std::string_view name);

/// Keeps the application's colours with the desktop's choice of light or dark and of high
/// contrast, also while windows are open, where the toolkit does not do so by itself. Once, with
/// the application just made.
void followColorScheme();

/// Whether the application's colours are dark ones now: a platform theme may bring them.
[[nodiscard]] bool looksDark();

/// Whether the application's colours have the contrast that black on white has.
[[nodiscard]] bool looksHighContrast();

/// Takes these colours, light ones of ordinary contrast being the style's own. Nothing where
/// they are in use.
void useColors(Colors colors);
inline void useDarkColors(bool isDark) {
  useColors({isDark, false});
}

}  // namespace vantora
