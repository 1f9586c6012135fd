// SPDX-License-Identifier: MIT
#include "dispatch/queues.hpp"

#include <poll.h>

#include <algorithm>

#include "dispatch/main_run_loop.hpp"
#include "frameworks/System/clock.hpp"
#include "objc/fault.hpp"

namespace standin::Dispatch {
namespace {

bool isReadable(int descriptor) {
  pollfd asked{descriptor, POLLIN, 0};
  return poll(&asked, 1, 0) > 0;
}

StandInSource* nextSource(StandInQueue& queue) {
  StandInSource* earliest = nullptr;
  for (StandInSource* each : queue.sources) {
    if (each->isTimer && each->due <= now() && (earliest == nullptr || each->due < earliest->due)) {
      earliest = each;
    } else if (!each->isTimer && isReadable(each->descriptor)) {
      return each;
    }
  }
  return earliest;
}

// The next instant of the timer's grid that is still to come.
void advance(StandInSource& timer) {
  if (timer.interval == DISPATCH_TIME_FOREVER) {
    timer.due = DISPATCH_TIME_FOREVER;
    return;
  }
  const std::uint64_t passed = (now() - timer.due) / timer.interval;
  timer.due += (passed + 1) * timer.interval;
}

// One at a time: Dispatch never enters a serial queue again from inside of one of its items.
class Turn {
 public:
  explicit Turn(StandInQueue& queue) : queue_(queue) { queue_.isRunning = true; }
  ~Turn() {
    queue_.isRunning = false;
    queue_.changed.notify_all();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  StandInQueue& queue_;
};

}  // namespace

void work(StandInQueue& queue) {
  std::unique_lock lock(mutex());
  while (true) {
    if (runNext(queue, lock)) {
      continue;
    }
    if (queue.isEnding) {
      return;
    }
    const std::uint64_t due = nextDue(queue);
    if (due == DISPATCH_TIME_FOREVER) {
      queue.changed.wait(lock);
    } else {
      const std::uint64_t begin = now();
      queue.changed.wait_for(lock, std::chrono::nanoseconds(due > begin ? due - begin : 0));
    }
  }
}

namespace {

void destroy(StandInObject& object, std::unique_lock<std::mutex>& lock) {
  if (auto* source = dynamic_cast<StandInSource*>(&object)) {
    if (!source->isActive) {
      fault("a source of queue %s is released that was never activated",
            source->target->label.c_str());
    }
    if (!source->isCancelled) {
      fault("a source of queue %s is released without having been cancelled",
            source->target->label.c_str());
    }
    if (source->finalizer != nullptr) {
      source->target->work.push_back({source->finalizer, source->context});
      wake(*source->target);
    }
    StandInQueue* target = source->target;
    living().sources.erase(source);
    delete source;
    release(*target, lock);
    return;
  }
  auto& queue = dynamic_cast<StandInQueue&>(object);
  queue.isEnding = true;
  queue.changed.notify_all();
  std::thread worker = std::move(queue.worker);
  lock.unlock();
  if (worker.get_id() == std::this_thread::get_id()) {
    fault("queue %s is released for the last time by one of its own items", queue.label.c_str());
  }
  worker.join();
  lock.lock();
  living().queues.erase(&queue);
  delete &queue;
}

}  // namespace

std::mutex& mutex() {
  static auto* const only = new std::mutex;
  return *only;
}

Living& living() {
  static auto* const only = new Living;
  return *only;
}

std::uint64_t now() {
  return uptime();
}

StandInQueue& mainQueue() {
  static StandInQueue* const only = [] {
    auto* made = new StandInQueue;
    made->label = "com.apple.main-thread";
    made->isMain = true;
    return made;
  }();
  return *only;
}

bool runNext(StandInQueue& queue, std::unique_lock<std::mutex>& lock) {
  if (queue.isRunning) {
    return false;
  }
  if (!queue.work.empty()) {
    const StandInQueue::Work next = queue.work.front();
    queue.work.pop_front();
    const Turn turn(queue);
    lock.unlock();
    next.function(next.context);
    lock.lock();
    return true;
  }
  StandInSource* source = nextSource(queue);
  if (source == nullptr) {
    return false;
  }
  if (source->isTimer) {
    advance(*source);
  }
  retain(*source);
  {
    const Turn turn(queue);
    lock.unlock();
    source->handler(source->context);
    lock.lock();
  }
  release(*source, lock);
  return true;
}

std::uint64_t nextDue(const StandInQueue& queue) {
  std::uint64_t earliest = DISPATCH_TIME_FOREVER;
  for (const StandInSource* each : queue.sources) {
    earliest = std::min(earliest, each->due);
  }
  return earliest;
}

void wake(StandInQueue& queue) {
  queue.changed.notify_all();
  if (queue.isMain) {
    MainRunLoop::wake();
  }
}

void retain(StandInObject& object) {
  ++object.references;
}

void release(StandInObject& object, std::unique_lock<std::mutex>& lock) {
  if (object.references <= 0) {
    fault("a queue or source is released once more than it was retained");
  }
  if (--object.references == 0) {
    destroy(object, lock);
  }
}

std::vector<TimerState> runningTimers() {
  const std::lock_guard lock(mutex());
  std::vector<TimerState> timers;
  const auto collect = [&](const StandInQueue& queue) {
    for (const StandInSource* each : queue.sources) {
      if (each->isTimer && each->due != DISPATCH_TIME_FOREVER) {
        const bool isOnce = each->interval == DISPATCH_TIME_FOREVER;
        timers.push_back({queue.label, queue.quality,
                          isOnce ? 0 : static_cast<double>(each->interval) / 1e9,
                          static_cast<double>(each->leeway) / 1e9});
      }
    }
  };
  collect(mainQueue());
  for (const StandInQueue* each : living().queues) {
    collect(*each);
  }
  return timers;
}

void drainMainQueue() {
  std::unique_lock lock(mutex());
  StandInQueue& queue = mainQueue();
  while (!queue.work.empty()) {
    const StandInQueue::Work next = queue.work.front();
    queue.work.pop_front();
    lock.unlock();
    next.function(next.context);
    lock.lock();
  }
}

int livingSources() {
  const std::lock_guard lock(mutex());
  return static_cast<int>(living().sources.size());
}

int livingQueues() {
  const std::lock_guard lock(mutex());
  return static_cast<int>(living().queues.size());
}

}  // namespace standin::Dispatch
