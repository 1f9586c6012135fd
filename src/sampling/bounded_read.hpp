// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

#include "runtime/clock.hpp"
#include "runtime/lazy_queue_thread.hpp"

namespace vantora {

/// How long a read may take before the pass goes on without it.
struct ReadLimits {
  /// The pass waits this long for an answer; embedded controllers take tens of milliseconds,
  /// slow ones hundreds.
  Seconds waitTimeout{0.5};
  /// While a read takes no longer than this, the answer before it still counts.
  Seconds overdueAfter{5};
};

/// Reads on a thread of their own, because a driver may take any time over them, or never
/// return. There is never more than one read under way. Used on one thread, the sampling
/// queue's; clock and thread must outlive the object and every read.
template <typename Answer>
class BoundedRead {
 public:
  BoundedRead(LazyQueueThread& thread, const Clock& clock, ReadLimits limits)
      : thread_(thread), clock_(clock), limits_(limits) {}

  /// Calls `read` on the thread, unless an earlier one is still under way, and returns the
  /// newest answer. Nothing when there is none, when the read under way is overdue, or when
  /// the thread cannot be started. `read` must own what it uses.
  [[nodiscard]] std::optional<Answer> operator()(std::function<Answer()> read) {
    std::unique_lock lock(state_->mutex);
    if (!state_->isReading) {
      if (!begin(std::move(read))) {
        return std::nullopt;
      }
      const std::chrono::duration<double> wait = limits_.waitTimeout;
      state_->finished.wait_for(lock, wait, [this] { return !state_->isReading; });
    }
    if (state_->isReading && clock_.uptime() - begunAt_ > limits_.overdueAfter) {
      state_->newest.reset();
    }
    return state_->newest;
  }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable finished;
    bool isReading = false;        // guarded by mutex
    std::optional<Answer> newest;  // guarded by mutex
  };

  // With the mutex held.
  bool begin(std::function<Answer()> read) {
    TaskQueue* queue = nullptr;
    try {
      queue = &thread_.queue();
    } catch (const std::system_error&) {
      return false;
    }
    state_->isReading = true;
    begunAt_ = clock_.uptime();
    queue->post([state = state_, read = std::move(read)] {
      Answer answer = read();
      const std::lock_guard lock(state->mutex);
      state->newest = std::move(answer);
      state->isReading = false;
      state->finished.notify_one();
    });
    return true;
  }

  LazyQueueThread& thread_;
  const Clock& clock_;
  const ReadLimits limits_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();  // shared with the thread
  Seconds begunAt_{0};
};

}  // namespace vantora
