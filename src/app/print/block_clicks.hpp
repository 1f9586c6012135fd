// SPDX-License-Identifier: MIT
//
// The clicks that i3bar and swaybar write to the program of their blocks
// (https://i3wm.org/docs/i3bar-protocol.html, "Click events"): an endless JSON array with an
// object a line. Bytes from outside: what is no click on one of our blocks is left out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "process/line_framer.hpp"

namespace vantora {

/// The buttons that mean something.
enum class BlockButton : std::uint8_t { left, right };

/// The button of one line; nothing for any other button, another program's block and what is
/// no such object.
[[nodiscard]] std::optional<BlockButton> readBlockClick(std::string_view line);

/// Cuts the stream into lines. One thread.
class BlockClicks {
 public:
  /// A click takes about 300 bytes. Of a longer line than this nothing is kept.
  static constexpr std::size_t maxLine = 8192;

  explicit BlockClicks(std::function<void(BlockButton)> onClick) : onClick_(std::move(onClick)) {}

  /// Takes what has arrived, of any size.
  void feed(std::string_view bytes);

 private:
  void feedPart(std::string_view bytes);

  std::function<void(BlockButton)> onClick_;
  LineFramer framer_{2 * maxLine};
  bool isSkipping_ = false;  // the rest of a line that is too long
};

}  // namespace vantora
