// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "runtime/clock.hpp"
#include "sampling/driver_calls.hpp"

namespace vantora {

/// The newest answer of a driver that may hang: there is never more than one question under way.
/// Used on the thread of the calls' queue; `calls` and `clock` must outlive it.
template <typename Answer>
class DriverAnswer {
 public:
  /// While a question takes no longer than this, the answer before it still counts.
  static constexpr Seconds overdueAfter{5};

  DriverAnswer(DriverCalls& calls, const Clock& clock) : calls_(calls), clock_(clock) {}

  /// Asks, unless an earlier question is still under way, and then calls `done`. `ask` must own
  /// what it uses.
  void refresh(std::function<Answer()> ask, TaskQueue::Task&& done) {
    if (state_->begin()) {
      begunAt_ = clock_.uptime();
      calls_.call([state = state_, ask = std::move(ask)] { state->answer(ask); }, std::move(done));
    } else {
      done();
    }
  }

  /// Returns what `read` makes of the newest answer: of null when there is none, or when the
  /// question under way is overdue.
  template <typename Read>
  [[nodiscard]] auto newest(const Read& read) {
    const std::lock_guard lock(state_->mutex);
    if (state_->isAsking && clock_.uptime() - begunAt_ > overdueAfter) {
      state_->newest.reset();
    }
    return read(state_->newest ? &*state_->newest : nullptr);
  }

  /// Forgets the newest answer, that of a question under way included, and runs `task`: at once,
  /// or after that question, beside the queue's tasks.
  void startOver(TaskQueue::Task&& task) {
    const std::lock_guard lock(state_->mutex);
    state_->newest.reset();
    if (state_->isAsking) {
      state_->afterwards = std::move(task);
    } else {
      task();
    }
  }

 private:
  struct State {
    std::mutex mutex;
    bool isAsking = false;         // guarded by mutex
    std::optional<Answer> newest;  // guarded by mutex
    TaskQueue::Task afterwards;    // guarded by mutex

    // False while a question is under way.
    bool begin() {
      const std::lock_guard lock(mutex);
      return !std::exchange(isAsking, true);
    }

    void answer(const std::function<Answer()>& ask) {
      Answer answer = ask();
      const std::lock_guard lock(mutex);
      isAsking = false;
      if (const TaskQueue::Task task = std::exchange(afterwards, nullptr)) {
        task();
      } else {
        newest = std::move(answer);
      }
    }
  };

  DriverCalls& calls_;
  const Clock& clock_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();  // shared with the question
  Seconds begunAt_{0};
};

}  // namespace vantora
