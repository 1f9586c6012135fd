// SPDX-License-Identifier: MIT
#pragma once

#include "runtime/unique_fd.hpp"

namespace vantora {

/// Wakes a thread that waits for a descriptor to become readable. The descriptor stays open
/// for as long as the object.
class WakeSignal {
 public:
  /// Throws std::system_error when the process has no descriptor left.
  WakeSignal();

  /// Becomes readable with raise().
  [[nodiscard]] int descriptor() const { return reader_.get(); }

  /// From any thread. Raised twice before a clear() counts once.
  void raise() const;

  /// On the thread that waits, once it has been woken.
  void clear() const;

 private:
  UniqueFd reader_;
  UniqueFd writer_;  // where it is another one
};

}  // namespace vantora
