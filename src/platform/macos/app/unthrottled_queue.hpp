// SPDX-License-Identifier: MIT
#pragma once

#include "runtime/task_queue.hpp"

namespace vantora {

/// Another queue, whose repeating timers keep App Nap away as long as they run: the system
/// slows the timers of an application without a visible window down to one in several
/// seconds (NSProcessInfo, "activities"). The machine may sleep all the same.
class UnthrottledQueue final : public TaskQueue {
 public:
  /// `queue` must outlive it.
  explicit UnthrottledQueue(TaskQueue& queue) : queue_(queue) {}

  void post(Task task) override;
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override;
  [[nodiscard]] TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override;

 private:
  TaskQueue& queue_;
};

}  // namespace vantora
