// SPDX-License-Identifier: MIT
//
// Work that may wait for a device, kept off the queue that asks for it.
#pragma once

#include <chrono>
#include <memory>

#include "runtime/task_queue.hpp"
#include "runtime/work_thread.hpp"

namespace vantora {

class Worker {
 public:
  using Task = TaskQueue::Task;

  virtual ~Worker() = default;

  /// Runs `work` on another thread, after all work that was given before, then `done` as a
  /// task of the queue that the worker belongs to. Returns at once. Only on that queue's
  /// thread.
  virtual void run(Task work, Task done) = 0;
};

/// Works on a thread that exists only while there is work.
class ThreadWorker final : public Worker {
 public:
  /// `queue` runs the `done` tasks and must outlive the worker.
  explicit ThreadWorker(TaskQueue& queue, Seconds endTimeout = Seconds{1});

  /// Ends as endBy() does, `endTimeout` from now at the latest.
  ~ThreadWorker() override;
  ThreadWorker(const ThreadWorker&) = delete;
  ThreadWorker& operator=(const ThreadWorker&) = delete;

  /// Where the system has no thread to give, the work runs inside this call. Not after
  /// endBy().
  void run(Task work, Task done) override;

  /// Waits until all work is finished. False when that is not so at `deadline`: the work that
  /// is under way is left behind with its thread, and may still use what it refers to; what it
  /// would have reported, and work that has not begun, is dropped. Once.
  [[nodiscard]] bool endBy(std::chrono::steady_clock::time_point deadline);

 private:
  struct Reports;
  const Seconds endTimeout_;
  const std::shared_ptr<Reports> reports_;  // shared with the work
  WorkThread thread_{"vantora-files"};
  bool hasEnded_ = false;
};

}  // namespace vantora
