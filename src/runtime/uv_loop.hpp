// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <memory>
#include <string>
#include <thread>

#include "runtime/uv_task_queue.hpp"

namespace vantora {

/// A libuv loop with its queue. Made, run and destroyed on one thread.
class UvLoop {
 public:
  UvLoop();
  /// Closes whatever handles are left and lets libuv finish with them.
  ~UvLoop();
  UvLoop(const UvLoop&) = delete;
  UvLoop& operator=(const UvLoop&) = delete;

  [[nodiscard]] uv_loop_t& raw() { return loop_; }
  [[nodiscard]] UvTaskQueue& queue() { return *queue_; }

  /// Runs until stop().
  void run();
  /// Ends run() after the task that is under way. On the loop's thread; from elsewhere
  /// post it to the queue.
  void stop();

 private:
  uv_loop_t loop_{};
  std::unique_ptr<UvTaskQueue> queue_;
};

/// A queue with a thread of its own, named `label`. Destroying it waits for the task
/// that is under way and drops the rest; not from the queue's own thread.
class UvQueueThread {
 public:
  explicit UvQueueThread(std::string label);
  ~UvQueueThread();
  UvQueueThread(const UvQueueThread&) = delete;
  UvQueueThread& operator=(const UvQueueThread&) = delete;

  [[nodiscard]] UvTaskQueue& queue() { return *queue_; }
  /// The loop, for adapters that are used on this queue's thread only.
  [[nodiscard]] uv_loop_t& loop() { return *loop_; }

 private:
  UvTaskQueue* queue_ = nullptr;
  uv_loop_t* loop_ = nullptr;
  std::thread thread_;
};

}  // namespace vantora
