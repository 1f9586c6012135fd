// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <chrono>
#include <memory>
#include <string>

#include "runtime/readable_watch.hpp"
#include "runtime/task_queue.hpp"
#include "sampling/driver_calls.hpp"

namespace vantora {

/// A queue with its own thread that a hanging driver cannot stop. The thread calls the drivers
/// itself, so that a tick wakes one thread only. When a call exceeds its limit, the queue continues
/// on a new thread; the old one cannot be interrupted in the kernel and ends with its call.
///
/// Belongs to the thread of the loop, which starts the new thread: made, stopped and destroyed
/// there.
class DriverQueue final : public TaskQueue, public DriverCalls {
 public:
  /// Embedded controllers take tens of milliseconds for an answer, slow ones hundreds.
  static constexpr Seconds usualCallTime{0.5};

  /// `label` names the threads; `loop` must outlive the queue. Throws std::system_error when the
  /// system has no thread or no descriptor left.
  DriverQueue(uv_loop_t& loop, std::string label, Seconds maxCallTime = usualCallTime);
  /// Ends the queue, and waits for every task and call as long as they take.
  ~DriverQueue() override;
  DriverQueue(const DriverQueue&) = delete;
  DriverQueue& operator=(const DriverQueue&) = delete;

  using Task = TaskQueue::Task;
  void post(Task task) override;
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override;
  [[nodiscard]] TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override;
  void call(Task work, Task done) override;

  /// Asks the queue to end after the task or call that is under way; what is left is dropped.
  /// Returns at once.
  void stop();
  /// After stop(): whether every thread has ended by `deadline`. Where one has not, only the end
  /// of the process can end it, which must then not destroy what its task or call uses.
  [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point deadline);

 private:
  struct Core;
  class QueueTimer;
  TimerHandle start(Seconds delay, Seconds interval, Seconds leeway, Task task);

  const std::shared_ptr<Core> core_;  // shared with the threads and the handles
  ReadableWatch watch_;
};

}  // namespace vantora
