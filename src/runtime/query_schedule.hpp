// SPDX-License-Identifier: MIT
//
// The timing that every provider of remote readings shares: when the next query is due,
// when what is shown changes by itself, how far apart queries stay, and which answer is
// still wanted. What a result means for the schedule is the provider's to say.
//
// Lives on the thread of its queue.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "runtime/clock.hpp"
#include "runtime/retry_backoff.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

class QuerySchedule {
 public:
  /// Queries that the user or the passing of a reset asks for keep so far apart.
  static constexpr Seconds leastDistance{30};

  /// How late the two timers may run.
  struct Leeways {
    Seconds query{0};
    Seconds display{0};
  };

  /// Says whether the answer to a conversation is still wanted. Outlives the schedule.
  class Ticket {
   public:
    /// False once another conversation began, the schedule stopped, or it is gone.
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

  /// A query begins now: the scheduled one is off, earlier tickets are void, and
  /// distances count from here.
  [[nodiscard]] Ticket beginQuery();

  /// As beginQuery(), but distances go on counting from the last query.
  [[nodiscard]] Ticket beginLogin();

  /// Whether the last query began at least `leastDistance` ago.
  [[nodiscard]] bool isLeastDistancePassed() const;

  /// Replaces the scheduled query.
  void scheduleQuery(Seconds delay);
  /// Replaces the scheduled query by one `interval` after the last query began, at the
  /// soonest in one second.
  void scheduleQueryAtInterval(Seconds interval);
  /// Counts a failure and replaces the scheduled query by a retry (RetryBackoff).
  void scheduleRetry(Seconds interval);
  [[nodiscard]] bool isQueryScheduled() const { return queryTimer_ != nullptr; }

  /// Forgets the failures counted so far.
  void resetFailures() { backoff_.reset(); }

  /// Replaces the moment at which what is shown changes; nothing means that it does not.
  void scheduleDisplay(std::optional<Seconds> delay);

  /// Voids every ticket, takes both timers off and forgets the failures.
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
  TimerHandle queryTimer_;
  TimerHandle displayTimer_;
};

}  // namespace vantora
