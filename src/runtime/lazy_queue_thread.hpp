// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "runtime/uv_loop.hpp"

namespace vantora {

/// A queue thread that starts when its queue is first asked for. Used by one thread at a time.
class LazyQueueThread {
 public:
  explicit LazyQueueThread(std::string label) : label_(std::move(label)) {}

  [[nodiscard]] bool isStarted() const { return thread_.has_value(); }

  /// Throws std::system_error when the thread cannot be started.
  [[nodiscard]] TaskQueue& queue() {
    if (!thread_) {
      thread_.emplace(label_);
    }
    return thread_->queue();
  }

  /// Ends the thread. False when the task that is under way has not returned by `deadline`;
  /// UvQueueThread::waitUntil() says what follows from that.
  [[nodiscard]] bool endBy(std::chrono::steady_clock::time_point deadline) {
    if (!thread_) {
      return true;
    }
    thread_->stop();
    if (!thread_->waitUntil(deadline)) {
      return false;
    }
    thread_.reset();
    return true;
  }

 private:
  const std::string label_;
  std::optional<UvQueueThread> thread_;
};

}  // namespace vantora
