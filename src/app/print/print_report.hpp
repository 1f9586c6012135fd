// SPDX-License-Identifier: MIT
//
// The readings as lines of text, for terminals, bars and scripts. Pure functions of one
// moment's values; none of the results holds a line feed unless it says so.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "status/status_presentation.hpp"

namespace vantora {

/// What was drawn, and what it was drawn from. Refers to its parts, which must outlive it.
struct PrintReport {
  const AppConfiguration& configuration;
  const MetricSnapshot& snapshot;
  const StatusPresentation& presentation;
  const std::optional<std::string>& notice;
  WallTime now{};  ///< When it is printed.
};

namespace PrintFormatter {

/// One line: the visible modules left to right, "L1 L2" each, separated by " | ".
[[nodiscard]] std::string textLine(const PrintReport& report);

/// One JSON object. Dates in ISO 8601, UTC, whole seconds; what is absent is null.
[[nodiscard]] std::string jsonLine(const PrintReport& report);

/// One status line of the i3bar input protocol
/// (https://i3wm.org/docs/i3bar-protocol.html): an array with a block a module. The
/// stream around it is i3barHeader, then each line with a comma behind it. Grey while
/// sampling is paused.
[[nodiscard]] std::string i3barLine(const PrintReport& report);
inline constexpr std::string_view i3barBlockName = "vantora";
/// `readsClicks`: whether the bar is to write clicks (BlockClicks) to this program.
[[nodiscard]] constexpr const char* i3barHeader(bool readsClicks) {
  return readsClicks ? "{\"version\":1,\"click_events\":true}\n[" : "{\"version\":1}\n[";
}

/// One update of a waybar custom module with "return-type": "json" (waybar-custom(5)).
/// Text and tool tip are Pango markup there, so "<" and "&" are escaped. The tool tip has
/// a line for each module.
[[nodiscard]] std::string waybarLine(const PrintReport& report);

}  // namespace PrintFormatter

}  // namespace vantora
