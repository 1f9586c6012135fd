// SPDX-License-Identifier: MIT
//
// Virtual time for tests: one timeline behind the clock and any number of queues.
// Nothing runs by itself; a test moves the time and everything runs on its own thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"

namespace vantora::test {

class VirtualQueue;

/// The clock of a test. Starts at an uptime of 1,000 s and a fixed date; tasks run in
/// the order of their due times, and of their insertion where those are equal.
class VirtualTime final : public Clock {
 public:
  VirtualTime();
  ~VirtualTime() override;

  [[nodiscard]] Seconds uptime() const override { return uptime_; }
  [[nodiscard]] WallTime now() const override { return now_; }

  /// A new queue on this timeline. It must not outlive the VirtualTime.
  [[nodiscard]] std::unique_ptr<VirtualQueue> makeQueue();

  /// Runs what is posted and due now, without moving the time.
  void runPosted() { advance(Seconds{0}); }

  /// Moves both clocks from due task to due task up to `span` from now, so that each
  /// task sees exactly its own due time. Tasks scheduled meanwhile run if they fall due.
  void advance(Seconds span);

  /// Moves both clocks at once without running anything: a machine that was stopped.
  /// What fell due meanwhile runs, late, with the next advance.
  void jump(Seconds span);

  /// Moves the wall clock alone: the machine slept, or the user set the date.
  void moveWallClock(Seconds span);
  void setWallClock(WallTime now) { now_ = now; }

  /// How many tasks and timers wait.
  [[nodiscard]] std::size_t pendingCount() const { return tasks_.size(); }
  /// How long until the next one is due; nothing when none waits.
  [[nodiscard]] std::optional<Seconds> untilNext() const;

  /// One advance fails the test after this many tasks instead of going on for ever.
  void setTaskLimit(std::size_t limit) { taskLimit_ = limit; }

 private:
  friend class VirtualQueue;
  class VirtualTimer;
  // Whole nanoseconds, so that sums of spans meet their instants exactly.
  using Ticks = std::chrono::nanoseconds;
  struct Entry {
    const VirtualQueue* queue = nullptr;
    Ticks interval{0};
    TaskQueue::Task task;
  };
  // Due time, then insertion.
  using Key = std::pair<Ticks, std::uint64_t>;
  struct Place {
    Key key;
    bool isAlive = true;
  };

  std::shared_ptr<Place> insert(Ticks due, Entry entry, std::shared_ptr<Place> place = nullptr);
  void cancel(const Place& place);
  void forget(const VirtualQueue& queue);

  static Ticks ticks(Seconds span);
  void moveTo(Ticks uptime);

  Ticks uptime_ = std::chrono::seconds{1000};
  WallTime now_;
  std::uint64_t insertions_ = 0;
  std::size_t taskLimit_ = 100'000;
  std::map<Key, std::pair<Entry, std::shared_ptr<Place>>> tasks_;
};

class VirtualQueue final : public TaskQueue {
 public:
  explicit VirtualQueue(VirtualTime& time) : time_(time) {}
  ~VirtualQueue() override { time_.forget(*this); }
  VirtualQueue(const VirtualQueue&) = delete;
  VirtualQueue& operator=(const VirtualQueue&) = delete;

  void post(Task task) override;
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override;
  [[nodiscard]] TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override;

  /// The leeway that the latest timer asked for.
  [[nodiscard]] Seconds lastLeeway() const { return lastLeeway_; }

 private:
  VirtualTime& time_;
  Seconds lastLeeway_{0};
};

}  // namespace vantora::test
