// SPDX-License-Identifier: MIT
//
// The timing that every quota provider shares: when the next query is due, when a shown text
// changes by itself, the minimum interval between queries, and which result is still wanted. The
// provider decides what a result means for the schedule.
//
// Lives on the thread of its queue.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "quota/retry_backoff.hpp"
#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

class QuerySchedule {
 public:
  /// The minimum time between a query and the next one that the user or a reset asks for.
  static constexpr Seconds minQueryInterval{30};

  /// How late the two timers may run.
  struct Leeways {
    Seconds query{0};
    Seconds display{0};
  };

  /// Whether the result of a conversation is still wanted. May outlive the schedule.
  class Ticket {
   public:
    /// False once another conversation began, or the schedule stopped or was destroyed.
    [[nodiscard]] bool isCurrent() const;

   private:
    friend class QuerySchedule;
    explicit Ticket(const std::shared_ptr<const std::uint64_t>& generation)
        : generation_(generation), own_(*generation) {}
    std::weak_ptr<const std::uint64_t> generation_;
    std::uint64_t own_;
  };

  /// `queue` and `clock` outlive the schedule. The two tasks run on the queue.
  QuerySchedule(TaskQueue& queue, const Clock& clock, RandomFraction random, Leeways leeways,
                TaskQueue::Task onQueryDue, TaskQueue::Task onDisplayDue);
  QuerySchedule(const QuerySchedule&) = delete;
  QuerySchedule& operator=(const QuerySchedule&) = delete;

  /// A query begins now: cancels the scheduled one, voids earlier tickets and counts intervals from
  /// here.
  [[nodiscard]] Ticket beginQuery();

  /// As beginQuery(), but intervals are still counted from the last query.
  [[nodiscard]] Ticket beginLogin();

  /// Whether the last query began at least `minQueryInterval` ago.
  [[nodiscard]] bool minIntervalElapsed() const;

  /// Replaces the scheduled query.
  void scheduleQuery(Seconds delay);
  /// Replaces the scheduled query by one `interval` after the last query began, at the
  /// soonest in one second.
  void scheduleQueryAtInterval(Seconds interval);
  /// Counts a failure and replaces the scheduled query by a retry (RetryBackoff).
  void scheduleRetry(Seconds interval);
  [[nodiscard]] bool isQueryScheduled() const { return queryTimer_ != nullptr; }
  /// The time until the scheduled query is due, never negative; nothing while none is scheduled.
  [[nodiscard]] std::optional<Seconds> untilQuery() const;

  /// Forgets the failures counted so far.
  void resetFailures() { backoff_.reset(); }

  /// Replaces the display timer, which runs when a shown text changes; nothing cancels it.
  void scheduleDisplay(std::optional<Seconds> delay);

  /// Voids every ticket, cancels both timers and forgets the failures.
  void stop();

 private:
  TaskQueue& queue_;
  const Clock& clock_;
  RetryBackoff backoff_;
  const Leeways leeways_;
  const TaskQueue::Task onQueryDue_;
  const TaskQueue::Task onDisplayDue_;
  const std::shared_ptr<std::uint64_t> generation_ = std::make_shared<std::uint64_t>(0);
  Seconds lastRequestUptime_{0};
  Seconds queryDueUptime_{0};  // while there is a queryTimer_
  TimerHandle queryTimer_;
  TimerHandle displayTimer_;
};

}  // namespace vantora
