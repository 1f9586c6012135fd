// SPDX-License-Identifier: MIT
#pragma once

#include "runtime/task_queue.hpp"

namespace vantora {

/// Work of a queue that may wait for a device however long it takes. Used on that queue's thread
/// only.
class DriverCalls {
 public:
  using Task = TaskQueue::Task;

  virtual ~DriverCalls() = default;

  /// Runs `work` after the task that is under way, then `done`; no other task of the queue comes
  /// between them. Where `work` takes too long, `done` no longer waits for it: `work` then goes
  /// on by itself beside the queue's tasks, and must own what it uses and guard what it shares.
  /// One call a task.
  virtual void call(Task work, Task done) = 0;
};

}  // namespace vantora
