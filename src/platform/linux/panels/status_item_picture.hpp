// SPDX-License-Identifier: MIT
//
// The pictures for panels, made from the core's template: tinted, cut down to
// a square, or turned into a label. Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/linux/panels/ink.hpp"
#include "status/bitmap.hpp"
#include "status/rasterise.hpp"
#include "status/status_presentation.hpp"

namespace vantora {

/// All texts in one line, modules separated by " · ".
[[nodiscard]] std::string labelText(const StatusPresentation& presentation);

/// What a square picture shows: the lines of one module. Empty where it has no such line.
struct SquareContent {
  StyledText top;
  StyledText bottom;
  bool operator==(const SquareContent&) const = default;
};

/// The user's module while it is visible. Else the first module with a reading: on a machine
/// without a battery the first of all may never have one. Without any reading the first module,
/// and without modules the mark.
[[nodiscard]] SquareContent squareContent(const StatusPresentation& presentation,
                                          const std::optional<UUID>& chosen = std::nullopt);

/// A module as an item of its own.
struct ModuleSquare {
  std::string id;     ///< The module's identity, which stays when modules are moved.
  std::string title;  ///< Numbered from the left, so that it sorts by itself, with the metrics.
  std::string toolTip;
  SquareContent content;
  bool operator==(const ModuleSquare&) const = default;
};

/// All visible modules from the left; without any, the mark alone.
[[nodiscard]] std::vector<ModuleSquare> moduleSquares(const StatusPresentation& presentation);

/// The content as a square picture, `side` points wide and high: each line as large as
/// half of the height and the width allow, in the middle.
[[nodiscard]] StatusImage squareImage(const SquareContent& content, double side,
                                      TextEngine& engine);

/// A frame of this size with the image in its middle, on whole points, so that lines stay
/// as crisp as they were laid out.
[[nodiscard]] ImageFrame centredFrame(const StatusImage& image, double width, double height);

/// The application's mark, for a panel that shows the texts beside it: three bars.
[[nodiscard]] AlphaBitmap applicationMark(int side);

/// Writes the template as ARGB, 32 bits a pixel, bytes in network order, colours not
/// multiplied by alpha: the format of a StatusNotifierItem's IconPixmap. `pixels` has
/// four bytes a pixel. A plate takes the whole bitmap, its corners rounded by
/// `cornerRadius` pixels.
void tint(const AlphaBitmap& bitmap, Ink ink, double cornerRadius, std::span<std::uint8_t> pixels);

}  // namespace vantora
