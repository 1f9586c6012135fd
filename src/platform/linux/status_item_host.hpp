// SPDX-License-Identifier: MIT
//
// What is known of the panels that show status items, and what each of them is given.
// Policy only: nothing here touches the bus.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantora {

/// A panel that shows StatusNotifierItems, as far as it makes a difference.
enum class StatusItemHost : std::uint8_t { waybar, mate, gnome, xfce, plasma, lxqt, other };

/// From the name of the process that owns org.kde.StatusNotifierWatcher, as the kernel
/// keeps it in /proc/PID/comm: at most 15 bytes, with or without the line end.
[[nodiscard]] StatusItemHost statusItemHost(std::string_view processName);

/// What the item's picture is.
enum class PictureForm : std::uint8_t {
  wide,    ///< The whole picture: the panel keeps its proportions.
  label,   ///< The application's mark, and all texts in the label beside it.
  square,  ///< The first module with a reading; everything is in the tool tip.
};
[[nodiscard]] PictureForm pictureForm(StatusItemHost host);

/// Whether the panel squeezes the item but keeps a window in its X11 tray wide.
[[nodiscard]] bool keepsTrayWindowWide(StatusItemHost host);

/// What the desktop says about its colours (org.freedesktop.appearance, color-scheme).
enum class ColorScheme : std::uint8_t { noPreference, dark, light };

/// The colours that the template is drawn with.
enum class Ink : std::uint8_t {
  light,         ///< For a dark panel.
  dark,          ///< For a light panel.
  lightOnPlate,  ///< On a dark plate of its own: legible on any panel.
};
[[nodiscard]] Ink statusItemInk(StatusItemHost host, ColorScheme scheme);

/// The tool tip's title for a text whose sentences are parted by ". ": a line for each.
/// Escaped where the panel takes it for markup.
[[nodiscard]] std::string toolTipTitle(StatusItemHost host, std::string_view text);

/// Whether the panel shows a tool tip at all.
[[nodiscard]] bool showsToolTip(StatusItemHost host);

/// Whether the panel puts the icon's accessible description beneath the tool tip, where
/// it would repeat it.
[[nodiscard]] bool repeatsDescription(StatusItemHost host);

/// Where the item stands.
enum class StatusItemSituation : std::uint8_t {
  shown,   ///< A panel shows it.
  noHost,  ///< The session has no panel that shows status items.
  noBus,   ///< The session bus cannot be reached.
};
/// The situation in one line for a person, in Portuguese.
[[nodiscard]] std::string_view describe(StatusItemSituation situation);

}  // namespace vantora
