// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "model/result.hpp"

namespace vantora {

/// Whether the system starts the program when the user's session begins.
enum class LoginItemStatus : std::uint8_t {
  notRegistered,
  enabled,
  requiresApproval,  ///< Registered; the user still has to agree in the system's settings.
  notFound,          ///< The system knows no such program.
};

/// The program's entry among those that start with the session. A call may wait for a disk or
/// for the system: the settings model makes it on its worker's thread, one at a time.
class LoginItem {
 public:
  virtual ~LoginItem() = default;

  /// What the system says now. Never fails: what cannot be read is not registered.
  [[nodiscard]] virtual LoginItemStatus status() = 0;

  /// Asks the system to start the program, or no longer to. Nothing on success, which
  /// does not mean that status() agrees; a fault with the system's description.
  [[nodiscard]] virtual std::optional<Fault> setRegistered(bool registered) = 0;
};

}  // namespace vantora
