// SPDX-License-Identifier: MIT
//
// The system's power events, as the app coordinator receives them.
#pragma once

#include <functional>
#include <memory>

namespace vantora {

/// While any copy of it is alive, the system delays its sleep, where it supports that
/// (for a few seconds at most). Keep it until what must be stopped has stopped. Null
/// where the system does not wait.
using SleepHold = std::shared_ptr<void>;

/// Lives on the main thread. Destroying it stops the calls. A system without such events (no
/// service, no permission) is an ordinary state: the handlers are then never called.
class PowerEvents {
 public:
  /// Called on the main thread, never from inside of start().
  struct Handlers {
    /// The adapter was plugged in or out, or a battery changed, or may have changed: a system
    /// that does not announce changes of the level causes one call a minute. Changes that
    /// arrive together may cause one call.
    std::function<void()> onPowerSourceChange;
    /// The system is about to sleep.
    std::function<void(SleepHold)> onWillSleep;
    /// The system woke up. Called once after each onWillSleep, also when the sleep was
    /// cancelled, as soon as the system reports it.
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
