// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "runtime/uv_task_queue.hpp"

namespace vantora {

/// A libuv loop with its queue. Made, run and destroyed on one thread.
class UvLoop {
 public:
  /// Throws std::system_error when the process has no descriptor left for a loop.
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
  void close();

  uv_loop_t loop_{};
  std::unique_ptr<UvTaskQueue> queue_;
};

/// A queue with a thread of its own, named `label`. Belongs to the thread that made it.
class UvQueueThread {
 public:
  /// Throws std::system_error when the system has no thread or no descriptor left.
  explicit UvQueueThread(std::string label);
  /// Ends the thread, and waits for the task that is under way as long as it takes.
  ~UvQueueThread();
  UvQueueThread(const UvQueueThread&) = delete;
  UvQueueThread& operator=(const UvQueueThread&) = delete;

  [[nodiscard]] UvTaskQueue& queue() { return *queue_; }
  /// The loop, for adapters that are used on this queue's thread only.
  [[nodiscard]] uv_loop_t& loop() { return *loop_; }

  /// Asks the thread to end after the task that is under way; the tasks that are left are
  /// dropped. Returns at once.
  void stop();
  /// After stop(): whether the thread has ended by `deadline`. Where it has not, a task of
  /// it blocks in the kernel and nothing can end it but the end of the process, which must
  /// then not destroy what the task uses: this object, and the program's other parts.
  [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point deadline);

 private:
  struct State;

  std::shared_ptr<State> state_;  // shared with the thread
  UvTaskQueue* queue_ = nullptr;
  uv_loop_t* loop_ = nullptr;
  bool isStopping_ = false;
  std::thread thread_;
};

}  // namespace vantora
