// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "runtime/task_queue.hpp"

namespace vantora {

/// The main thread's queue: Dispatch's main queue, which the application's event loop
/// drains. Made and destroyed on the main thread.
class DispatchMainQueue final : public TaskQueue {
 public:
  DispatchMainQueue();
  ~DispatchMainQueue() override;
  DispatchMainQueue(const DispatchMainQueue&) = delete;
  DispatchMainQueue& operator=(const DispatchMainQueue&) = delete;

  void post(Task task) override;
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override;
  [[nodiscard]] TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override;

 private:
  // Alive as long as the queue: what was scheduled holds it weakly.
  struct Life {};
  std::shared_ptr<Life> life_;
};

}  // namespace vantora
