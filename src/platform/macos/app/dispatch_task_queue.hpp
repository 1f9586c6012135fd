// SPDX-License-Identifier: MIT
//
// Task queues over Dispatch's. Each task and timer runs in an autorelease pool of its own.
#pragma once

#include <dispatch/dispatch.h>

#include <memory>
#include <string>

#include "runtime/task_queue.hpp"

namespace vantora {

/// What the two kinds have in common.
class DispatchTaskQueue : public TaskQueue {
 public:
  DispatchTaskQueue(const DispatchTaskQueue&) = delete;
  DispatchTaskQueue& operator=(const DispatchTaskQueue&) = delete;

  void post(Task task) override;
  /// Timers stand still while the machine sleeps.
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override;
  [[nodiscard]] TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override;

 protected:
  explicit DispatchTaskQueue(dispatch_queue_t queue) : queue_(queue) {}
  ~DispatchTaskQueue() override = default;

  /// Nothing that was scheduled begins after this.
  void end() { life_.reset(); }
  [[nodiscard]] dispatch_queue_t raw() const { return queue_; }

 private:
  const dispatch_queue_t queue_;
  // Alive as long as the queue: what was scheduled holds it weakly.
  struct Life {};
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
};

/// The main thread's queue: Dispatch's main queue, which the application's event loop
/// drains. Made and destroyed on the main thread.
class DispatchMainQueue final : public DispatchTaskQueue {
 public:
  DispatchMainQueue();
};

/// A queue beside the main thread, at utility priority: the system runs it on its efficient
/// cores and lets its timers wait for others within their leeway. Destroying it waits for the
/// task that is under way and drops the rest; not from the queue itself.
class DispatchSerialQueue final : public DispatchTaskQueue {
 public:
  explicit DispatchSerialQueue(const std::string& label);
  ~DispatchSerialQueue() override;
};

}  // namespace vantora
