// SPDX-License-Identifier: MIT
//
// What the panels that show status items can and cannot do: one row for each panel in
// one table, panel.cpp. A panel's quirk is a field here. Code asks the row and never the
// name.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/linux/panels/ink.hpp"

namespace vantora {

/// What the item's picture is.
enum class PictureForm : std::uint8_t {
  wide,    ///< The whole picture: the panel keeps its proportions.
  label,   ///< The application's mark, and all texts in the label beside it.
  square,  ///< The first module with a reading; everything is in the tool tip.
};

/// Whether a panel that keeps only squares shows several items of one program side by side, and
/// which has to come first so that they stand in order. A panel that sorts them does so by their
/// titles, which are numbered.
enum class ItemOrder : std::uint8_t {
  single,    ///< It does not, or scrambles them: one item.
  leftmost,  ///< The leftmost comes first.
  rightmost  ///< The rightmost comes first.
};

/// What the configuration of a panel's process says of how its items are shown.
struct PanelLayout {
  bool isVertical = false;
  /// How high it draws an item's picture, in points; nothing where that is not said.
  std::optional<int> iconHeight = {};
  bool operator==(const PanelLayout&) const = default;
};

/// One row of the table. The defaults are what a panel that is not in it gets.
struct Panel {
  std::string_view name;
  /// The programs that own org.kde.StatusNotifierWatcher for it. '#' is a number, and
  /// unused places are empty.
  std::array<std::string_view, 3> programs{};

  PictureForm form = PictureForm::square;
  ItemOrder itemOrder = ItemOrder::single;  ///< Of the square form.
  /// Heights in pixels, beside 22 and 44, of which the panel draws an offered picture as it
  /// is when it has just that height itself; it stretches all others.
  std::span<const int> exactHeights{};
  /// Of several pictures it draws the largest, whatever its screen's scale: it is offered one
  /// alone, for the scale of the session's screens.
  bool drawsLargest = false;
  bool hasToolTip = true;
  bool readsMarkup = false;         ///< Takes the tool tip's text for Pango markup.
  bool repeatsDescription = false;  ///< Puts the accessible description beneath the tool tip.
  bool isAlwaysDark = false;        ///< Whatever colours the desktop prefers.
  bool hasTrayToAsk = false;        ///< Its X11 tray says whether the panel is vertical.
  /// Reads the configuration of its process, whose folder in /proc it gets: where no tray tells
  /// what it says. May wait for a disk. Null where there is nothing to read.
  PanelLayout (*readsLayout)(const std::string& process) = nullptr;
  bool keepsTrayWindowWide = false;  ///< A window in its X11 tray, though not the item.
};

/// Every row, for tests and documents.
[[nodiscard]] std::span<const Panel> knownPanels();

/// The row of a panel that is not in the table.
[[nodiscard]] const Panel& unknownPanel();

/// The row by the name of the process that owns the watcher, as the kernel keeps it in
/// /proc/PID/comm: cut to 15 bytes (proc_pid_comm(5)), with or without the line end.
[[nodiscard]] const Panel& panelOf(std::string_view processName);

/// The form that the item has on the panel: a column has no room for a wide picture.
[[nodiscard]] PictureForm formOn(const Panel& panel, bool isVertical);

/// The form in a few words of Portuguese.
[[nodiscard]] std::string_view describe(PictureForm form);

/// The ink for the panel on a desktop that prefers `scheme`.
[[nodiscard]] Ink inkFor(const Panel& panel, ColorScheme scheme);

/// The tool tip's lines, escaped where the panel takes them for markup.
[[nodiscard]] std::string toolTipFor(const Panel& panel, std::string_view lines);

}  // namespace vantora
