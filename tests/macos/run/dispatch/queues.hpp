// SPDX-License-Identifier: MIT
//
// The queues and sources behind the functions of dispatch/dispatch.h. What they play: a
// serial queue runs one item after the other, in order; the main queue's items run in the
// main run loop, and never inside of each other; timers keep to their grid and skip what
// they missed; a finalizer runs on the target queue once the last reference has gone.
#pragma once

#include <dispatch/dispatch.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

struct StandInSourceType {
  bool isTimer;
};

// What queues and sources have in common.
struct StandInObject {
  virtual ~StandInObject() = default;
  int references = 1;
  void* context = nullptr;
  dispatch_function_t finalizer = nullptr;
};

struct StandInQueue : StandInObject {
  struct Work {
    dispatch_function_t function;
    void* context;
  };

  std::string label;
  qos_class_t quality = QOS_CLASS_USER_INITIATED;
  bool isMain = false;
  bool isRunning = false;  // an item is under way
  bool isEnding = false;
  std::deque<Work> work;
  std::vector<StandInSource*> sources;  // the active ones
  std::condition_variable changed;
  std::thread worker;  // of a serial queue
};

struct StandInSource : StandInObject {
  bool isTimer = false;
  int descriptor = -1;
  StandInQueue* target = nullptr;
  dispatch_function_t handler = nullptr;
  std::uint64_t due = DISPATCH_TIME_FOREVER;
  std::uint64_t interval = DISPATCH_TIME_FOREVER;
  std::uint64_t leeway = 0;
  bool isActive = false;
  bool isCancelled = false;
};

namespace standin::Dispatch {

/// Guards every queue and source.
std::mutex& mutex();

/// Serial queues and sources that were not given back yet. With the mutex.
struct Living {
  std::set<StandInQueue*> queues;
  std::set<StandInSource*> sources;
};
Living& living();

/// The life of a serial queue's thread.
void work(StandInQueue& queue);

[[nodiscard]] std::uint64_t now();  // nanoseconds of uptime
[[nodiscard]] StandInQueue& mainQueue();

/// Runs the queue's next item or timer that is due; false when there is none. With the lock
/// held, which it lets go of meanwhile.
bool runNext(StandInQueue& queue, std::unique_lock<std::mutex>& lock);

/// When the queue's next timer is due. With the mutex.
[[nodiscard]] std::uint64_t nextDue(const StandInQueue& queue);

/// Wakes the queue's thread. With the mutex.
void wake(StandInQueue& queue);

void retain(StandInObject& object);
void release(StandInObject& object, std::unique_lock<std::mutex>& lock);

/// One timer that is running, as a test sees it.
struct TimerState {
  std::string queue;
  qos_class_t quality;
  double interval;  // seconds; 0: once
  double leeway;
};
[[nodiscard]] std::vector<TimerState> runningTimers();

/// Runs what waits on the main queue, also from inside of one of its items: at the end, when
/// it no longer does anything but let go of what it holds.
void drainMainQueue();

/// What is alive: for the check at the end that everything was given back.
[[nodiscard]] int livingSources();
[[nodiscard]] int livingQueues();  // besides the main one

}  // namespace standin::Dispatch
