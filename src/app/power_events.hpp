// SPDX-License-Identifier: MIT
//
// What the system tells about its power, as the app coordinator hears it.
#pragma once

#include <functional>
#include <memory>

namespace vantora {

/// While any copy of it is alive, the system waits with falling asleep, where it knows how to
/// wait (and for some seconds at most). Keep it until what must be stopped has stopped. Null
/// where the system does not wait.
using SleepHold = std::shared_ptr<void>;

/// Lives on the main thread. Destroying it ends the telling. A system that tells nothing (no
/// such service, no permission) is an ordinary state: the handlers are then not called.
class PowerEvents {
 public:
  /// Called on the main thread, never from inside of start().
  struct Handlers {
    /// The adapter was plugged in or out, or a battery changed, or may have changed: a system
    /// that announces no change of the level tells this once a minute. Changes that come
    /// together may be told once.
    std::function<void()> onPowerSourceChange;
    /// The system is about to sleep.
    std::function<void(SleepHold)> onWillSleep;
    /// The system woke up. Comes once after each onWillSleep, also when the sleep was
    /// called off, as soon as the system can tell.
    std::function<void()> onDidWake;
    /// Time to look at the battery again, whose level may have sunk without a word. Once
    /// a minute, on systems where that can be, and only while there is a battery.
    std::function<void()> onBatteryDue;
  };

  virtual ~PowerEvents() = default;

  /// Begins to tell. Once.
  virtual void start(Handlers handlers) = 0;
};

}  // namespace vantora
