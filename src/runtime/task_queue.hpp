// SPDX-License-Identifier: MIT
//
// A serial queue of tasks with timers: the only thing that schedules. Each queue runs
// its tasks one after the other on one thread; the main queue runs on the main loop.
#pragma once

#include <functional>
#include <memory>

#include "model/time.hpp"

namespace vantora {

/// A scheduled task. Destroying the handle cancels it: on the queue's own thread the
/// task then never runs again; from another thread a run that has begun may still end.
class Timer {
 public:
  virtual ~Timer() = default;
};
using TimerHandle = std::unique_ptr<Timer>;

class TaskQueue {
 public:
  using Task = std::function<void()>;

  virtual ~TaskQueue() = default;

  /// Runs `task` once, after everything posted before it. From any thread; returns at
  /// once. Tasks that have not begun when the queue ends are destroyed without a run.
  virtual void post(Task task) = 0;

  /// Runs `task` once, `delay` from now. A delay that is not positive means at once,
  /// but never inside this call. The system may run it up to `leeway` late in order to
  /// wake once for several. Only on the queue's own thread.
  [[nodiscard]] virtual TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) = 0;

  /// Runs `task` every `interval` (positive), first one `interval` from now. The
  /// instants stay on the grid that the call began: a late run does not move the next
  /// one, and instants that were missed altogether are skipped. Only on the queue's own
  /// thread.
  [[nodiscard]] virtual TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) = 0;
};

}  // namespace vantora
