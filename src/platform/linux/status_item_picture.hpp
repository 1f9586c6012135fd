// SPDX-License-Identifier: MIT
//
// The pictures that panels are given, made from the core's template: tinted, cut down to
// a square, or turned into a label. Pure functions.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/linux/status_item_host.hpp"
#include "status/bitmap.hpp"
#include "status/status_presentation.hpp"

namespace vantora {

/// The two lines of one module. Empty where the module has none.
struct ModuleColumn {
  StyledText top;
  StyledText bottom;
  bool operator==(const ModuleColumn&) const = default;
};

/// The modules of a picture from the left. Lines belong together when one stands above
/// the other: within a module they overlap, between modules they never do.
[[nodiscard]] std::vector<ModuleColumn> moduleColumns(const StatusImage& image, TextEngine& engine);

/// All texts in one line, modules parted by " · ".
[[nodiscard]] std::string labelText(const std::vector<ModuleColumn>& columns);

/// The module that a square picture shows: the first with a reading, for on a machine
/// without a battery the first of all may never have one; without any reading the first.
[[nodiscard]] ModuleColumn squareModule(const std::vector<ModuleColumn>& columns);

/// One module as a square picture, `side` points wide and high: each line as large as
/// half of the height and the width allow, in the middle.
[[nodiscard]] StatusImage squareImage(const ModuleColumn& column, double side, TextEngine& engine);

/// The whole image in the middle of a window of this size, in points.
[[nodiscard]] StatusImage centredImage(StatusImage image, double width, double height);

/// The application's mark, for a panel that shows the texts beside it: three bars.
[[nodiscard]] AlphaBitmap applicationMark(int side);

/// Writes the template as ARGB, 32 bits a pixel, bytes in network order, colours not
/// multiplied by alpha: the format of a StatusNotifierItem's IconPixmap. `pixels` has
/// four bytes a pixel. A plate takes the whole bitmap, its corners rounded by
/// `cornerRadius` pixels.
void tint(const AlphaBitmap& bitmap, Ink ink, double cornerRadius, std::span<std::uint8_t> pixels);

}  // namespace vantora
