// SPDX-License-Identifier: MIT
#include "app/print/block_clicks.hpp"

#include <algorithm>

#include "app/print/print_report.hpp"
#include "model/json.hpp"

namespace vantora {
namespace {

// X11's numbers of the buttons.
constexpr std::int64_t leftButton = 1;
constexpr std::int64_t rightButton = 3;

}  // namespace

std::optional<BlockButton> readBlockClick(std::string_view line) {
  // The array's bracket and commas, on whichever side of the line a bar puts them.
  constexpr std::string_view between = "[,] \t\r";
  line.remove_prefix(std::min(line.find_first_not_of(between), line.size()));
  line.remove_suffix(line.size() - 1 - std::min(line.find_last_not_of(between), line.size() - 1));
  const auto click = parseJson(line);
  if (!click || !click->isObject()) {
    return std::nullopt;
  }
  const Json* name = member(*click, "name");
  const Json* button = member(*click, "button");
  if (name == nullptr || button == nullptr || asText(*name) != PrintFormatter::i3barBlockName) {
    return std::nullopt;
  }
  const auto number = asInteger(*button);
  if (number == leftButton) {
    return BlockButton::left;
  }
  return number == rightButton ? std::optional(BlockButton::right) : std::nullopt;
}

void BlockClicks::feed(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view part = bytes.substr(0, maxLine);
    bytes.remove_prefix(part.size());
    feedPart(part);
  }
}

void BlockClicks::feedPart(std::string_view bytes) {
  if (isSkipping_) {
    const std::size_t end = bytes.find('\n');
    if (end == std::string_view::npos) {
      return;
    }
    bytes.remove_prefix(end + 1);
    isSkipping_ = false;
  }
  // Less than a line waits, and no more comes with it, so that all of it fits.
  (void)framer_.feed(bytes, [this](std::string_view line) {
    const auto button = line.size() <= maxLine ? readBlockClick(line) : std::nullopt;
    if (button) {
      onClick_(*button);
    }
    return true;
  });
  if (framer_.pendingBytes() > maxLine) {
    framer_.clear();
    isSkipping_ = true;
  }
}

}  // namespace vantora
