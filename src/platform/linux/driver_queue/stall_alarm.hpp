// SPDX-License-Identifier: MIT
#pragma once

#include "model/time.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora {

/// A timer that one thread sets and another one waits for, without a thread that wakes where it
/// is put off in time: timerfd_create(2). The descriptor stays open for as long as the object.
class StallAlarm {
 public:
  /// Throws std::system_error when the process has no descriptor left.
  StallAlarm();

  /// Becomes readable when the alarm goes off.
  [[nodiscard]] int descriptor() const { return timer_.get(); }

  /// Goes off `delay` (positive) from now, and at no earlier setting. From any thread.
  void set(Seconds delay) const;
  /// Goes off no more. From any thread; a thread that was woken before finds nothing to clear.
  void cancel() const;

  /// On the thread that waits, once it has been woken.
  void clear() const;

 private:
  UniqueFd timer_;
};

}  // namespace vantora
