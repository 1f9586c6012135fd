// SPDX-License-Identifier: MIT
#include "platform/linux/driver_queue/driver_queue.hpp"

#include <algorithm>
#include <cassert>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/driver_queue/stall_alarm.hpp"
#include "runtime/thread_hints.hpp"

namespace vantora {
namespace {

// CLOCK_MONOTONIC, like libuv's timers.
using Monotonic = std::chrono::steady_clock;

Monotonic::duration ofQueue(Seconds span) {
  // A century is longer than any timer of ours and far from overflowing.
  constexpr Seconds century{3.2e9};
  return std::chrono::ceil<Monotonic::duration>(std::clamp(span, Seconds{0}, century));
}

struct ScheduledTask {
  Monotonic::time_point due;
  Monotonic::duration interval{0};  // 0: once
  Seconds leeway{};
  TaskQueue::Task task;
};

}  // namespace

struct DriverQueue::Core : std::enable_shared_from_this<Core> {
  std::string label;
  Seconds maxCallTime{};
  StallAlarm alarm;

  std::mutex mutex;
  std::condition_variable hasWork;
  std::condition_variable hasEnded;
  // All guarded by mutex.
  std::deque<Task> tasks;
  std::vector<std::shared_ptr<ScheduledTask>> timers;
  Task work;  // of the call that follows the task under way
  Task done;  // of that call or the one under way
  bool isCalling = false;
  Monotonic::time_point callBegan;
  unsigned runner = 0;  // the number of the thread that runs the tasks
  unsigned threads = 0;
  bool isEnding = false;

  // With the mutex held. Throws std::system_error when the system has no thread to give.
  void startThread() {
    std::thread([core = shared_from_this(), number = runner] { core->run(number); }).detach();
    ++threads;
  }

  void run(unsigned number) {
    nameThisThread(label);
    Seconds slack{-1};
    std::unique_lock lock(mutex);
    while (number == runner && !isEnding) {
      if (work) {
        runCall(number, lock);
      } else if (!tasks.empty()) {
        Task task = std::move(tasks.front());
        tasks.pop_front();
        runUnlocked(std::move(task), lock);
      } else if (!runDueTimer(lock)) {
        waitForWork(slack, lock);
      }
    }
    --threads;
    hasEnded.notify_all();
  }

  static void runUnlocked(Task task, std::unique_lock<std::mutex>& lock) {
    lock.unlock();
    task();
    task = nullptr;  // what it owns may post
    lock.lock();
  }

  void runCall(unsigned number, std::unique_lock<std::mutex>& lock) {
    isCalling = true;
    callBegan = Monotonic::now();
    alarm.set(maxCallTime);
    runUnlocked(std::exchange(work, nullptr), lock);
    if (number == runner) {
      alarm.cancel();
      isCalling = false;
      if (!isEnding) {
        runUnlocked(std::exchange(done, nullptr), lock);
      }
    }
  }

  // False when none is due.
  bool runDueTimer(std::unique_lock<std::mutex>& lock) {
    const auto next = nextTimer();
    const auto now = Monotonic::now();
    if (next == timers.end() || (*next)->due > now) {
      return false;
    }
    std::shared_ptr<ScheduledTask> timer = *next;
    if (timer->interval == Monotonic::duration{0}) {
      timers.erase(next);
    } else {
      timer->due += (1 + (now - timer->due) / timer->interval) * timer->interval;
    }
    lock.unlock();
    timer->task();
    timer.reset();  // what it owns may post
    lock.lock();
    return true;
  }

  std::vector<std::shared_ptr<ScheduledTask>>::iterator nextTimer() {
    return std::min_element(timers.begin(), timers.end(),
                            [](const auto& a, const auto& b) { return a->due < b->due; });
  }

  void waitForWork(Seconds& slack, std::unique_lock<std::mutex>& lock) {
    const auto next = nextTimer();
    if (next == timers.end()) {
      hasWork.wait(lock);
      return;
    }
    // The kernel may delay this thread's wake-ups by what every one of its timers allows.
    const Seconds wanted =
        (*std::min_element(timers.begin(), timers.end(), [](const auto& a, const auto& b) {
          return a->leeway < b->leeway;
        }))->leeway;
    if (wanted != slack) {
      slack = wanted;
      setTimerSlackOfThisThread(slack);
    }
    const auto due = (*next)->due;
    hasWork.wait_until(lock, due);
  }

  void cancel(const std::shared_ptr<ScheduledTask>& timer) {
    const std::lock_guard lock(mutex);
    std::erase(timers, timer);
  }

  // On the loop's thread, when the alarm has gone off: leaves a call that takes too long behind.
  void goOn() {
    const std::lock_guard lock(mutex);
    // It may have ended meanwhile, and another one have begun.
    if (!isCalling || isEnding || Monotonic::now() - callBegan < ofQueue(maxCallTime)) {
      return;
    }
    ++runner;
    try {
      startThread();
    } catch (const std::system_error&) {
      --runner;
      alarm.set(maxCallTime);
      return;
    }
    isCalling = false;
    tasks.push_front(std::exchange(done, nullptr));
  }
};

class DriverQueue::QueueTimer final : public Timer {
 public:
  QueueTimer(std::shared_ptr<Core> core, std::shared_ptr<ScheduledTask> timer)
      : core_(std::move(core)), timer_(std::move(timer)) {}
  ~QueueTimer() override { core_->cancel(timer_); }
  QueueTimer(const QueueTimer&) = delete;
  QueueTimer& operator=(const QueueTimer&) = delete;

 private:
  const std::shared_ptr<Core> core_;
  const std::shared_ptr<ScheduledTask> timer_;
};

DriverQueue::DriverQueue(uv_loop_t& loop, std::string label, Seconds maxCallTime)
    : core_(std::make_shared<Core>()) {
  core_->label = std::move(label);
  core_->maxCallTime = maxCallTime;
  const auto alarmed = [core = core_.get()] {
    core->alarm.clear();
    core->goOn();
  };
  if (const int error = watch_.start(loop, core_->alarm.descriptor(), alarmed); error != 0) {
    throw std::system_error(-error, std::generic_category());
  }
  const std::lock_guard lock(core_->mutex);
  core_->startThread();
}

DriverQueue::~DriverQueue() {
  stop();
  (void)waitUntil(Monotonic::time_point::max());
}

void DriverQueue::post(Task task) {
  {
    const std::lock_guard lock(core_->mutex);
    if (core_->isEnding) {
      return;
    }
    core_->tasks.push_back(std::move(task));
  }
  // Without the mutex, which the thread that wakes takes first.
  core_->hasWork.notify_one();
}

TimerHandle DriverQueue::runAfter(Seconds delay, Seconds leeway, Task task) {
  return start(delay, Seconds{0}, leeway, std::move(task));
}

TimerHandle DriverQueue::runEvery(Seconds interval, Seconds leeway, Task task) {
  assert(interval > Seconds{0});
  return start(interval, interval, leeway, std::move(task));
}

TimerHandle DriverQueue::start(Seconds delay, Seconds interval, Seconds leeway, Task task) {
  auto timer = std::make_shared<ScheduledTask>();
  timer->due = Monotonic::now() + ofQueue(delay);
  timer->interval = ofQueue(interval);
  timer->leeway = leeway;
  timer->task = std::move(task);
  {
    const std::lock_guard lock(core_->mutex);
    if (!core_->isEnding) {
      core_->timers.push_back(timer);
    }
  }
  return std::make_unique<QueueTimer>(core_, std::move(timer));
}

void DriverQueue::call(Task work, Task done) {
  const std::lock_guard lock(core_->mutex);
  assert(!core_->work && !core_->isCalling && "one call a task");
  core_->work = std::move(work);
  core_->done = std::move(done);
}

void DriverQueue::stop() {
  {
    const std::lock_guard lock(core_->mutex);
    core_->isEnding = true;
  }
  core_->hasWork.notify_one();
}

bool DriverQueue::waitUntil(Monotonic::time_point deadline) {
  std::deque<Task> droppedTasks;
  std::vector<std::shared_ptr<ScheduledTask>> droppedTimers;
  Task droppedWork;
  Task droppedDone;
  std::unique_lock lock(core_->mutex);
  if (!core_->hasEnded.wait_until(lock, deadline, [this] { return core_->threads == 0; })) {
    return false;
  }
  droppedTasks.swap(core_->tasks);
  droppedTimers.swap(core_->timers);
  droppedWork = std::exchange(core_->work, nullptr);
  droppedDone = std::exchange(core_->done, nullptr);
  lock.unlock();
  return true;
}

}  // namespace vantora
