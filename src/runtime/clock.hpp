// SPDX-License-Identifier: MIT
//
// The only place where the time comes from. Tests put virtual time behind it.
#pragma once

#include "model/time.hpp"

namespace vantora {

/// Both calls are cheap, cannot fail and may be made from any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since the machine started, sleep not counted. Never goes backwards, and
  /// never moves with the user's clock.
  [[nodiscard]] virtual Seconds uptime() const = 0;

  /// The wall clock, which the user may set at any time.
  [[nodiscard]] virtual WallTime now() const = 0;
};

}  // namespace vantora
