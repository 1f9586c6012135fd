// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "runtime/task_queue.hpp"

namespace vantora {

/// Runs tasks one after the other on a thread that exists only while there are any. For work that
/// may wait for a device, however long it takes.
class WorkThread {
 public:
  using Task = TaskQueue::Task;

  /// `label` names the thread.
  explicit WorkThread(std::string label);
  /// Waits for all work as long as it takes, unless endBy() was called.
  ~WorkThread();
  WorkThread(const WorkThread&) = delete;
  WorkThread& operator=(const WorkThread&) = delete;

  /// Runs `task` after everything posted before it. From any thread; returns at once. False,
  /// and `task` is as it was, when the system has no thread to give.
  [[nodiscard]] bool post(Task&& task);

  /// Waits until all work is finished. False when that is not so at `deadline`: the task that
  /// is under way is left behind with its thread, and may still use what it refers to; tasks
  /// that have not begun are destroyed. No post() afterwards.
  [[nodiscard]] bool endBy(std::chrono::steady_clock::time_point deadline);

 private:
  struct Core;
  const std::shared_ptr<Core> core_;
  bool hasEnded_ = false;
};

}  // namespace vantora
