// SPDX-License-Identifier: MIT
//
// Reminds of the battery while there is one. The kernel announces plugs and states, but of a
// falling level many drivers send no event: it has to be polled.
#pragma once

#include <functional>
#include <string>

#include "runtime/task_queue.hpp"

namespace vantora {

/// Calls once a minute, and only while the machine has a battery: a machine without one is
/// never woken. Asks no driver for anything, since an embedded controller may take its time.
/// Lives on the queue's thread.
class BatteryReminder {
 public:
  static constexpr Seconds interval{60};
  static constexpr Seconds leeway{10};

  /// `queue` must outlive the reminder.
  BatteryReminder(TaskQueue& queue, std::string root, std::function<void()> onDue);

  /// Looks whether there is a battery. At the start, and when the kernel announced a change.
  void refresh();

 private:
  [[nodiscard]] bool hasBattery() const;

  TaskQueue& queue_;
  std::string root_;
  std::function<void()> onDue_;
  TimerHandle timer_;
};

}  // namespace vantora
