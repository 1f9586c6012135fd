// SPDX-License-Identifier: MIT
//
// The menu conversation: the lines that the agent and vantora-settings, started to show
// one menu or one tool tip, exchange. docs/menu-protocol.md describes them. Both ends read
// strictly: a line that is no message ends the conversation. Nothing here holds state or throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "ports/menu_content.hpp"

namespace vantora::MenuProtocol {

/// The arguments with which vantora-settings shows a menu or a tool tip, and no window.
inline constexpr const char* argument = "--menu";
inline constexpr const char* toolTipArgument = "--tool-tip";

/// The most bytes that may wait to be cut into lines, at the menu or the tool tip and at
/// the agent.
inline constexpr std::size_t menuReadLimit = 16'384;
inline constexpr std::size_t agentReadLimit = 1'024;

/// The most entries, and the most bytes of a label.
inline constexpr std::size_t maxEntries = 32;
inline constexpr std::size_t maxLabelBytes = 256;
/// The most bytes of a tool tip.
inline constexpr std::size_t maxToolTipBytes = 8'192;

/// Coordinates on an X11 screen are 16 bits wide.
inline constexpr int minCoordinate = -32'768;
inline constexpr int maxCoordinate = 32'767;

/// The agent's only line, with its line feed. Text that is not UTF-8 is written with
/// replacement characters.
[[nodiscard]] std::string menuLine(const MenuContent& content);

/// Nothing for a line that is no menu: no entries or too many, an id twice, an empty or
/// an overlong label, a place on no screen.
[[nodiscard]] std::optional<MenuContent> readMenuLine(std::string_view line);

/// As menuLine(). A text that is too long is cut, between two characters.
[[nodiscard]] std::string toolTipLine(const ToolTipContent& content);
[[nodiscard]] std::optional<ToolTipContent> readToolTipLine(std::string_view line);

/// The menu is on the screen.
struct Shown {
  bool operator==(const Shown&) const = default;
};
/// An entry was chosen, and the menu is gone.
struct Chosen {
  std::int32_t id = 0;
  bool operator==(const Chosen&) const = default;
};
using MenuAnswer = std::variant<Shown, Chosen>;

[[nodiscard]] std::string answerLine(const MenuAnswer& answer);
[[nodiscard]] std::optional<MenuAnswer> readAnswerLine(std::string_view line);

}  // namespace vantora::MenuProtocol
