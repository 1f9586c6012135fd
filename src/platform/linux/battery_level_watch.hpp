// SPDX-License-Identifier: MIT
//
// Notices that a battery's level changed. The kernel announces plugs and states, but of the
// level many drivers say nothing: somebody has to look.
#pragma once

#include <functional>
#include <string>

#include "runtime/task_queue.hpp"

namespace vantora {

/// Looks once a minute, and only while the machine has a battery: a machine without one is
/// never woken. Lives on the queue's thread.
class BatteryLevelWatch {
 public:
  /// How often it looks, and how late it may.
  static constexpr Seconds interval{60};
  static constexpr Seconds leeway{10};

  /// `queue` must outlive the watch.
  BatteryLevelWatch(TaskQueue& queue, std::string root, std::function<void()> onChange);

  /// Takes note of batteries and levels as they are now, without a call of onChange. At the
  /// start, and whenever the kernel announced a change.
  void refresh();

 private:
  void look();
  [[nodiscard]] std::string levels() const;

  TaskQueue& queue_;
  std::string root_;
  std::function<void()> onChange_;
  std::string levels_;  ///< Empty while there is no battery.
  TimerHandle timer_;
};

}  // namespace vantora
