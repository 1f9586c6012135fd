// SPDX-License-Identifier: MIT
//
// The settings conversation: the lines that the agent and the settings window exchange.
// docs/settings-protocol.md describes them. Both ends read strictly: a line that is no
// message ends the conversation. Nothing here holds state or throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "settings/conversation/window_state.hpp"

namespace vantora::SettingsProtocol {

inline constexpr int version = 1;

/// The most bytes that may wait to be cut into lines, at the window and at the agent. The
/// largest line is a picture: 24 wide modules at scale 3 take one megabyte.
inline constexpr std::size_t windowReadLimit = 4'000'000;
inline constexpr std::size_t agentReadLimit = 256'000;

/// The largest picture side, in pixels, that the window takes.
inline constexpr int maxPictureSide = 16'384;

/// The scales for which the window may ask a picture.
inline constexpr Limits scales{0.5, 8};

// Agent to window.

/// Parts of the state that have new values, taken over already.
struct StateChange {
  std::uint64_t sequence = 0;  ///< To be answered with Seen.
  std::uint64_t revision = 0;  ///< The latest configuration of the window's that it knows.
  WindowFields fields;
};
/// The user asked for the window again.
struct Raise {
  std::string activationToken;
};
using AgentMessage = std::variant<StateChange, Raise>;

/// The line, with its line feed, that brings `fields` of the state. Text that is not
/// UTF-8 is written with replacement characters.
[[nodiscard]] std::string stateLine(const WindowState& state, const StateChange& change);
[[nodiscard]] std::string raiseLine(std::string_view activationToken);

/// Reads a line into `state`, which stays as it was when nothing is returned: for a line
/// that is no message of this protocol.
[[nodiscard]] std::optional<AgentMessage> readAgentLine(std::string_view line, WindowState& state);

// Window to agent.

/// The first message: the window is there and shows pictures at this scale. Again when
/// the scale changes.
struct Ready {
  double scale = 1;
};
/// The state change was shown; the next one may come.
struct Seen {
  std::uint64_t sequence = 0;
};
/// A configuration to put in force, which may be out of bounds.
struct NewConfiguration {
  std::uint64_t revision = 0;  ///< Counts the window's configurations from 1.
  AppConfiguration configuration;
  std::optional<UUID> pendingScrollID;
  bool isRemoval = false;  ///< Of a module: can be undone.
};
struct StartAtLogin {
  bool enabled = false;
};
/// The module for the square of a panel that keeps only one.
struct SquareModule {
  std::optional<UUID> module;  ///< Nothing leaves it to the agent.
};
enum class Intent : std::uint8_t {
  refreshCodex,
  connectCodex,
  refreshClaude,
  restoreDefaults,
  undo,       ///< Of the edit that the state's `undoable` names.
  listLinks,  ///< The user is about to choose a network interface.
  scrolled,   ///< The module of pendingScrollID is in view.
};
enum class PathIntent : std::uint8_t { exportJSON, importJSON, selectCodexExecutable };
struct PathRequest {
  PathIntent intent = PathIntent::exportJSON;
  std::string path;  ///< Absolute.
};
using WindowMessage =
    std::variant<Ready, Seen, NewConfiguration, StartAtLogin, SquareModule, Intent, PathRequest>;

/// The line, with its line feed. Nothing for a configuration that JSON cannot hold.
[[nodiscard]] std::optional<std::string> windowLine(const WindowMessage& message);

/// Nothing for a line that is no message of this protocol.
[[nodiscard]] std::optional<WindowMessage> readWindowLine(std::string_view line);

}  // namespace vantora::SettingsProtocol
