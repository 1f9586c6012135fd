// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "runtime/clock.hpp"
#include "runtime/work_thread.hpp"

namespace vantora {

/// How long a read may take before the pass goes on without it.
struct ReadLimits {
  /// The pass waits this long for an answer; embedded controllers take tens of milliseconds,
  /// slow ones hundreds.
  Seconds waitTimeout{0.5};
  /// While a read takes no longer than this, the answer before it still counts.
  Seconds overdueAfter{5};
  /// An answer whose read began less than this ago is returned at once; the read that
  /// begins is for the next pass. So a pass that comes soon again waits for no other thread.
  Seconds reuseFor{0};
};

/// Reads on a thread of their own, because a driver may take any time over them, or never
/// return. There is never more than one read under way. Used on one thread, the sampling
/// queue's; clock and thread must outlive the object and every read.
template <typename Answer>
class BoundedRead {
 public:
  BoundedRead(WorkThread& thread, const Clock& clock, ReadLimits limits)
      : thread_(thread), clock_(clock), limits_(limits) {}

  /// Calls `read` on the thread, unless an earlier one is still under way, and returns the
  /// newest answer. Nothing when there is none, when the read under way is overdue, or when
  /// the thread cannot be started. `read` must own what it uses.
  [[nodiscard]] std::optional<Answer> operator()(std::function<Answer()> read) {
    std::unique_lock lock(state_->mutex);
    if (!state_->isReading) {
      const bool isReusable =
          state_->newest.has_value() && clock_.uptime() - begunAt_ < limits_.reuseFor;
      if (isReusable) {
        std::optional<Answer> answer = state_->newest;
        begin(std::move(read), lock);
        return answer;
      }
      if (!begin(std::move(read), lock)) {
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

  /// Forgets the newest answer, so that the next call waits for one.
  void forget() {
    const std::lock_guard lock(state_->mutex);
    state_->newest.reset();
  }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable finished;
    bool isReading = false;        // guarded by mutex
    std::optional<Answer> newest;  // guarded by mutex
  };

  // With the mutex held, before and after.
  bool begin(std::function<Answer()> read, std::unique_lock<std::mutex>& lock) {
    state_->isReading = true;
    begunAt_ = clock_.uptime();
    // Without the mutex, which the thread that wakes may take soon.
    lock.unlock();
    const bool hasBegun = thread_.post([state = state_, read = std::move(read)] {
      Answer answer = read();
      {
        const std::lock_guard guard(state->mutex);
        state->newest = std::move(answer);
        state->isReading = false;
      }
      state->finished.notify_one();
    });
    lock.lock();
    if (!hasBegun) {
      state_->isReading = false;
    }
    return hasBegun;
  }

  WorkThread& thread_;
  const Clock& clock_;
  const ReadLimits limits_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();  // shared with the thread
  Seconds begunAt_{0};
};

}  // namespace vantora
