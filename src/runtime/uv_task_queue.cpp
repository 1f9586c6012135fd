// SPDX-License-Identifier: MIT
#include "runtime/uv_task_queue.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <system_error>
#include <utility>

#include "runtime/thread_hints.hpp"
#include "runtime/wake_signal.hpp"

namespace vantora {
namespace {

using Nanoseconds = std::chrono::duration<std::uint64_t, std::nano>;
constexpr double nanosecondsPerSecond = 1e9;
constexpr std::uint64_t nanosecondsPerMillisecond = 1'000'000;

std::uint64_t toNanoseconds(Seconds span) {
  // A century is longer than any timer of ours and far from overflowing.
  constexpr double century = 3.2e9;
  const double seconds = std::clamp(span.count(), 0.0, century);
  return static_cast<std::uint64_t>(std::llround(seconds * nanosecondsPerSecond));
}

}  // namespace

// One scheduled task. It holds itself until libuv has closed the handle, because libuv
// uses the memory until then.
struct ScheduledTask {
  uv_timer_t handle{};
  std::uint64_t due = 0;       // uv_hrtime of the next run
  std::uint64_t interval = 0;  // 0: once
  Seconds leeway{};
  TaskQueue::Task task;
  std::atomic<bool> isCancelled = false;
  bool isClosing = false;
  std::shared_ptr<ScheduledTask> self;
};

struct UvTaskQueue::Core {
  uv_loop_t* loop = nullptr;
  // For tasks that other threads post. Not uv_async_t: a thread that it wakes on the processor
  // of the one that posted spins until that one runs again, 45 microseconds and more.
  WakeSignal signal;
  uv_poll_t* wake = nullptr;
  uv_idle_t* soon = nullptr;  // for those of the loop's own thread: no system call
  std::thread::id thread;

  std::mutex mutex;
  bool isClosed = false;      // guarded by mutex
  std::vector<Task> pending;  // guarded by mutex

  std::vector<std::shared_ptr<ScheduledTask>> timers;  // the queue's thread only
  Seconds slack{-1};                                   // the queue's thread only

  void runPending() {
    uv_idle_stop(soon);
    std::vector<Task> batch;
    {
      const std::lock_guard lock(mutex);
      batch.swap(pending);
    }
    for (Task& task : batch) {
      task();
      task = nullptr;
    }
  }

  // From any thread. False when the queue has ended; the task is then dropped.
  bool post(Task task) {
    {
      const std::lock_guard lock(mutex);
      if (isClosed) {
        return false;
      }
      pending.push_back(std::move(task));
      if (pending.size() > 1) {
        return true;
      }
    }
    // Without the mutex, which the thread that wakes takes first.
    if (std::this_thread::get_id() == thread) {
      uv_idle_start(soon, [](uv_idle_t* idle) { static_cast<Core*>(idle->data)->runPending(); });
    } else {
      signal.raise();
    }
    return true;
  }

  void arm(ScheduledTask& timer) {
    uv_update_time(loop);
    // Rounded up to libuv's millisecond grid, so that no timer runs early.
    const std::uint64_t dueMilliseconds =
        (timer.due + nanosecondsPerMillisecond - 1) / nanosecondsPerMillisecond;
    const std::uint64_t now = uv_now(loop);
    const std::uint64_t delay = dueMilliseconds > now ? dueMilliseconds - now : 0;
    uv_timer_start(
        &timer.handle, [](uv_timer_t* handle) { fire(*static_cast<ScheduledTask*>(handle->data)); },
        delay, 0);
  }

  static void fire(ScheduledTask& timer) {
    const std::shared_ptr<ScheduledTask> keep = timer.self;
    auto* core = static_cast<Core*>(timer.handle.loop->data);
    if (timer.isCancelled) {
      return;
    }
    if (timer.interval == 0) {
      core->close(timer);
    } else {
      timer.due += timer.interval;
      const std::uint64_t now = uv_hrtime();
      if (timer.due <= now) {
        const std::uint64_t missed = (now - timer.due) / timer.interval + 1;
        timer.due += missed * timer.interval;
      }
      core->arm(timer);
    }
    timer.task();
  }

  // The queue's thread only. The task itself goes with the handle.
  void close(ScheduledTask& timer) {
    if (timer.isClosing) {
      return;
    }
    timer.isClosing = true;
    uv_close(reinterpret_cast<uv_handle_t*>(&timer.handle),
             [](uv_handle_t* handle) { static_cast<ScheduledTask*>(handle->data)->self.reset(); });
    std::erase_if(timers, [&](const auto& other) { return other.get() == &timer; });
    updateSlack();
  }

  // The kernel may delay this thread's wake-ups by what every one of its timers allows,
  // and by a second at most: others wait for answers on the same loop.
  void updateSlack() {
    constexpr Seconds maxSlack{1};
    Seconds wanted{0};
    if (!timers.empty()) {
      wanted = (*std::min_element(timers.begin(), timers.end(), [](const auto& a, const auto& b) {
                 return a->leeway < b->leeway;
               }))->leeway;
      wanted = std::min(wanted, maxSlack);
    }
    if (wanted != slack) {
      slack = wanted;
      setTimerSlackOfThisThread(slack);
    }
  }
};

class UvTaskQueue::UvTimer final : public Timer {
 public:
  UvTimer(std::shared_ptr<Core> core, std::shared_ptr<ScheduledTask> timer)
      : core_(std::move(core)), timer_(std::move(timer)) {}

  ~UvTimer() override {
    timer_->isCancelled = true;
    if (std::this_thread::get_id() == core_->thread) {
      core_->close(*timer_);
      return;
    }
    // When the queue has ended, it has closed the timer itself.
    core_->post([core = core_, timer = timer_] { core->close(*timer); });
  }
  UvTimer(const UvTimer&) = delete;
  UvTimer& operator=(const UvTimer&) = delete;

 private:
  std::shared_ptr<Core> core_;
  std::shared_ptr<ScheduledTask> timer_;
};

UvTaskQueue::UvTaskQueue(uv_loop_t& loop) : core_(std::make_shared<Core>()) {
  assert(loop.data == nullptr && "one queue a loop");
  core_->loop = &loop;
  core_->thread = std::this_thread::get_id();
  auto wake = std::make_unique<uv_poll_t>();
  if (const int status = uv_poll_init(&loop, wake.get(), core_->signal.descriptor()); status != 0) {
    throw std::system_error(-status, std::generic_category());
  }
  core_->wake = wake.release();
  core_->wake->data = core_.get();
  uv_poll_start(core_->wake, UV_READABLE, [](uv_poll_t* handle, int, int) {
    auto* core = static_cast<Core*>(handle->data);
    core->signal.clear();
    core->runPending();
  });
  core_->soon = new uv_idle_t;
  core_->soon->data = core_.get();
  uv_idle_init(&loop, core_->soon);
  loop.data = core_.get();
}

UvTaskQueue::~UvTaskQueue() {
  std::vector<Task> dropped;
  {
    const std::lock_guard lock(core_->mutex);
    core_->isClosed = true;
    dropped.swap(core_->pending);
  }
  dropped.clear();
  const auto timers = core_->timers;
  for (const auto& timer : timers) {
    timer->isCancelled = true;
    core_->close(*timer);
  }
  uv_close(reinterpret_cast<uv_handle_t*>(core_->wake),
           [](uv_handle_t* handle) { delete reinterpret_cast<uv_poll_t*>(handle); });
  uv_close(reinterpret_cast<uv_handle_t*>(core_->soon),
           [](uv_handle_t* handle) { delete reinterpret_cast<uv_idle_t*>(handle); });
  core_->loop->data = nullptr;
}

void UvTaskQueue::post(Task task) {
  core_->post(std::move(task));
}

TimerHandle UvTaskQueue::runAfter(Seconds delay, Seconds leeway, Task task) {
  return start(delay, Seconds{0}, leeway, std::move(task));
}

TimerHandle UvTaskQueue::runEvery(Seconds interval, Seconds leeway, Task task) {
  assert(interval > Seconds{0});
  return start(interval, interval, leeway, std::move(task));
}

TimerHandle UvTaskQueue::start(Seconds delay, Seconds interval, Seconds leeway, Task task) {
  assert(std::this_thread::get_id() == core_->thread);
  auto timer = std::make_shared<ScheduledTask>();
  timer->self = timer;
  timer->due = uv_hrtime() + toNanoseconds(delay);
  timer->interval = toNanoseconds(interval);
  timer->leeway = leeway;
  timer->task = std::move(task);
  timer->handle.data = timer.get();
  uv_timer_init(core_->loop, &timer->handle);
  core_->timers.push_back(timer);
  core_->arm(*timer);
  core_->updateSlack();
  return std::make_unique<UvTimer>(core_, std::move(timer));
}

}  // namespace vantora
