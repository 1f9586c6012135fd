// SPDX-License-Identifier: MIT
#include "support/virtual_time.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "support/example_time.hpp"

namespace vantora::test {

class VirtualTime::VirtualTimer final : public Timer {
 public:
  VirtualTimer(VirtualTime& time, std::shared_ptr<Place> place)
      : time_(time), place_(std::move(place)) {}
  ~VirtualTimer() override {
    if (place_->isAlive) {
      time_.cancel(*place_);
      place_->isAlive = false;
    }
  }
  VirtualTimer(const VirtualTimer&) = delete;
  VirtualTimer& operator=(const VirtualTimer&) = delete;

 private:
  VirtualTime& time_;
  std::shared_ptr<Place> place_;
};

VirtualTime::VirtualTime() : now_(exampleTime) {}

VirtualTime::~VirtualTime() {
  // Timers that outlive the timeline must not reach back into it.
  for (auto& [key, waiting] : tasks_) {
    waiting.second->isAlive = false;
  }
}

std::unique_ptr<VirtualQueue> VirtualTime::makeQueue() {
  return std::make_unique<VirtualQueue>(*this);
}

VirtualTime::Ticks VirtualTime::ticks(Seconds span) {
  return Ticks{std::llround(span.count() * 1e9)};
}

void VirtualTime::moveTo(Ticks uptime) {
  now_ += std::chrono::duration_cast<WallTime::duration>(uptime - uptime_);
  uptime_ = uptime;
}

std::shared_ptr<VirtualTime::Place> VirtualTime::insert(Ticks due, Entry entry,
                                                        std::shared_ptr<Place> place) {
  if (place == nullptr) {
    place = std::make_shared<Place>();
  }
  place->key = {due, insertions_++};
  tasks_.emplace(place->key, std::pair(std::move(entry), place));
  return place;
}

void VirtualTime::cancel(const Place& place) {
  // Destroyed outside the map: the task may hold other timers.
  const auto gone = tasks_.extract(place.key);
}

void VirtualTime::forget(const VirtualQueue& queue) {
  // Destroyed only when no iterator is in use: a task may hold timers of the same queue.
  std::vector<decltype(tasks_)::node_type> gone;
  for (auto at = tasks_.begin(); at != tasks_.end();) {
    const auto next = std::next(at);
    if (at->second.first.queue == &queue) {
      at->second.second->isAlive = false;
      gone.push_back(tasks_.extract(at));
    }
    at = next;
  }
}

void VirtualTime::advance(Seconds span) {
  const Ticks end = uptime_ + ticks(span);
  std::size_t ran = 0;
  while (!tasks_.empty() && tasks_.begin()->first.first <= end) {
    if (++ran > taskLimit_) {
      ADD_FAILURE() << "more than " << taskLimit_ << " tasks ran in one advance";
      return;
    }
    auto node = tasks_.extract(tasks_.begin());
    auto& [entry, place] = node.mapped();
    const Ticks due = node.key().first;
    if (due > uptime_) {
      moveTo(due);
    }
    if (entry.interval > Ticks{0}) {
      Ticks next = due + entry.interval;
      while (next <= uptime_) {
        next += entry.interval;
      }
      const TaskQueue::Task task = entry.task;
      insert(next, std::move(entry), place);
      task();
    } else {
      place->isAlive = false;
      entry.task();
    }
  }
  if (end > uptime_) {
    moveTo(end);
  }
}

void VirtualTime::jump(Seconds span) {
  moveTo(uptime_ + ticks(span));
}

void VirtualTime::moveWallClock(Seconds span) {
  now_ += std::chrono::duration_cast<WallTime::duration>(ticks(span));
}

std::optional<Seconds> VirtualTime::untilNext() const {
  if (tasks_.empty()) {
    return std::nullopt;
  }
  return std::max(Ticks{0}, tasks_.begin()->first.first - uptime_);
}

void VirtualQueue::post(Task task) {
  time_.insert(time_.uptime_, {this, VirtualTime::Ticks{0}, std::move(task)});
}

TimerHandle VirtualQueue::runAfter(Seconds delay, Seconds leeway, Task task) {
  lastLeeway_ = leeway;
  const VirtualTime::Ticks due = time_.uptime_ + VirtualTime::ticks(std::max(delay, Seconds{0}));
  return std::make_unique<VirtualTime::VirtualTimer>(
      time_, time_.insert(due, {this, VirtualTime::Ticks{0}, std::move(task)}));
}

TimerHandle VirtualQueue::runEvery(Seconds interval, Seconds leeway, Task task) {
  lastLeeway_ = leeway;
  return std::make_unique<VirtualTime::VirtualTimer>(
      time_, time_.insert(time_.uptime_ + VirtualTime::ticks(interval),
                          {this, VirtualTime::ticks(interval), std::move(task)}));
}

}  // namespace vantora::test
