// SPDX-License-Identifier: MIT
//
// Task queues on libuv loops. UvTaskQueue is a queue on a loop that its owner runs (the
// main queue); UvQueueThread owns a loop and the thread that runs it.
#pragma once

#include <uv.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "runtime/task_queue.hpp"

namespace vantora {

/// Lives on the loop's thread: made, shut down and destroyed there (or while no thread
/// runs the loop). Timers count in milliseconds, libuv's resolution.
class UvTaskQueue final : public TaskQueue {
 public:
  /// Throws std::system_error when the process has no descriptor left to wake the loop by.
  explicit UvTaskQueue(uv_loop_t& loop);
  ~UvTaskQueue() override;
  UvTaskQueue(const UvTaskQueue&) = delete;
  UvTaskQueue& operator=(const UvTaskQueue&) = delete;

  void post(Task task) override;
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override;
  [[nodiscard]] TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override;

 private:
  struct Core;
  class UvTimer;
  TimerHandle start(Seconds delay, Seconds interval, Seconds leeway, Task task);

  std::shared_ptr<Core> core_;
};

}  // namespace vantora
