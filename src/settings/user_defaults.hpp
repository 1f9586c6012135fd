// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/result.hpp"

namespace vantora {

/// The path of the Codex executable that the user chose for this machine. No part of
/// the configuration, so that exported layouts do not carry it.
inline constexpr std::string_view codexExecutablePathKey = "Vantora.CodexExecutablePath";

/// The module that a square shows in a panel that keeps only one: its identity, or empty. Panels
/// are this machine's.
inline constexpr std::string_view squareModuleKey = "Vantora.SquareModule";

/// Small preferences of this user on this machine. text() may be called on any thread, also
/// while another stores.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// The text stored under the key; nothing when there is none or it cannot be read.
  [[nodiscard]] virtual std::optional<std::string> text(std::string_view key) = 0;

  /// Stores the text; other keys stay. Nothing on success, otherwise a fault with the
  /// system's description, and what was stored before stays. May wait for a disk; one call at
  /// a time.
  [[nodiscard]] virtual std::optional<Fault> setText(std::string_view key,
                                                     std::string_view value) = 0;
};

}  // namespace vantora
