// SPDX-License-Identifier: MIT
#include "quota/query_schedule.hpp"

#include <algorithm>
#include <utility>

namespace vantora {

bool QuerySchedule::Ticket::isCurrent() const {
  const auto generation = generation_.lock();
  return generation != nullptr && *generation == own_;
}

QuerySchedule::QuerySchedule(TaskQueue& queue, const Clock& clock, RandomFraction random,
                             Leeways leeways, TaskQueue::Task onQueryDue,
                             TaskQueue::Task onDisplayDue)
    : queue_(queue),
      clock_(clock),
      backoff_(std::move(random)),
      leeways_(leeways),
      onQueryDue_(std::move(onQueryDue)),
      onDisplayDue_(std::move(onDisplayDue)) {}

QuerySchedule::Ticket QuerySchedule::beginQuery() {
  lastRequestUptime_ = clock_.uptime();
  return beginLogin();
}

QuerySchedule::Ticket QuerySchedule::beginLogin() {
  queryTimer_.reset();
  ++*generation_;
  return Ticket(generation_);
}

bool QuerySchedule::minIntervalElapsed() const {
  return clock_.uptime() - lastRequestUptime_ >= minQueryInterval;
}

std::optional<Seconds> QuerySchedule::untilQuery() const {
  return queryTimer_ != nullptr
             ? std::optional(std::max(Seconds{0}, queryDueUptime_ - clock_.uptime()))
             : std::nullopt;
}

void QuerySchedule::scheduleQuery(Seconds delay) {
  queryDueUptime_ = clock_.uptime() + delay;
  queryTimer_ = queue_.runAfter(delay, leeways_.query, [this] {
    queryTimer_.reset();
    onQueryDue_();
  });
}

void QuerySchedule::scheduleQueryAtInterval(Seconds interval) {
  scheduleQuery(std::max(Seconds{1}, lastRequestUptime_ - clock_.uptime() + interval));
}

void QuerySchedule::scheduleRetry(Seconds interval) {
  scheduleQuery(backoff_.afterFailure(interval));
}

void QuerySchedule::scheduleDisplay(std::optional<Seconds> delay) {
  displayTimer_.reset();
  if (delay) {
    displayTimer_ = queue_.runAfter(*delay, leeways_.display, onDisplayDue_);
  }
}

void QuerySchedule::stop() {
  ++*generation_;
  queryTimer_.reset();
  displayTimer_.reset();
  backoff_.reset();
}

}  // namespace vantora
