// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "runtime/task_queue.hpp"

namespace vantora {

/// One call for several requests that come close together. The kernel sends a handful of
/// events for one plug, and a reading for each would also measure the CPU over a few ticks.
/// Lives on the queue's thread.
class SettledCall {
 public:
  /// The call comes this long after the last request,
  static constexpr Seconds quietInterval{0.25};
  /// and at the latest this long after the first: some batteries never stop sending events.
  static constexpr Seconds maxDelay{2};

  /// `queue` must outlive the object.
  SettledCall(TaskQueue& queue, std::function<void()> call);

  void request();

 private:
  void run();

  TaskQueue& queue_;
  std::function<void()> call_;
  TimerHandle quiet_;
  TimerHandle latest_;
};

}  // namespace vantora
