// SPDX-License-Identifier: MIT
#include "platform/macos/dispatch_main_queue.hpp"

#include <dispatch/dispatch.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace vantora {
namespace {

// Dispatch's functions that take a context rather than a block: plain C++ owns it.
struct Scheduled {
  std::weak_ptr<void> life;
  TaskQueue::Task task;
};

std::int64_t toNanoseconds(Seconds span) {
  // A century is longer than any timer of ours and far from overflowing.
  constexpr double century = 3.2e9;
  return std::llround(std::clamp(span.count(), 0.0, century) * 1e9);
}

void runPosted(void* context) {
  const std::unique_ptr<Scheduled> posted(static_cast<Scheduled*>(context));
  if (!posted->life.expired()) {
    posted->task();
  }
}

void runRepeating(void* context) {
  const auto* scheduled = static_cast<const Scheduled*>(context);
  if (!scheduled->life.expired()) {
    scheduled->task();
  }
}

void runOnce(void* context) {
  auto* scheduled = static_cast<Scheduled*>(context);
  const TaskQueue::Task task = std::exchange(scheduled->task, nullptr);
  if (task && !scheduled->life.expired()) {
    task();
  }
}

// A timer source. Dispatch calls the finalizer when the last reference has gone and no
// run is under way, so that a task may destroy its own handle.
class DispatchTimer final : public Timer {
 public:
  DispatchTimer(Seconds delay, std::uint64_t interval, Seconds leeway, dispatch_function_t run,
                std::unique_ptr<Scheduled> scheduled)
      : source_(
            dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue())) {
    dispatch_set_context(source_, scheduled.release());
    dispatch_set_finalizer_f(source_,
                             [](void* context) { delete static_cast<Scheduled*>(context); });
    dispatch_source_set_event_handler_f(source_, run);
    // DISPATCH_TIME_NOW counts on the clock that stands still while the machine sleeps.
    dispatch_source_set_timer(source_, dispatch_time(DISPATCH_TIME_NOW, toNanoseconds(delay)),
                              interval, static_cast<std::uint64_t>(toNanoseconds(leeway)));
    dispatch_activate(source_);
  }
  ~DispatchTimer() override {
    dispatch_source_cancel(source_);
    dispatch_release(source_);
  }
  DispatchTimer(const DispatchTimer&) = delete;
  DispatchTimer& operator=(const DispatchTimer&) = delete;

 private:
  dispatch_source_t source_;
};

}  // namespace

DispatchMainQueue::DispatchMainQueue() : life_(std::make_shared<Life>()) {}

DispatchMainQueue::~DispatchMainQueue() = default;

void DispatchMainQueue::post(Task task) {
  auto posted = std::make_unique<Scheduled>(Scheduled{life_, std::move(task)});
  dispatch_async_f(dispatch_get_main_queue(), posted.release(), &runPosted);
}

TimerHandle DispatchMainQueue::runAfter(Seconds delay, Seconds leeway, Task task) {
  return std::make_unique<DispatchTimer>(
      delay, DISPATCH_TIME_FOREVER, leeway, &runOnce,
      std::make_unique<Scheduled>(Scheduled{life_, std::move(task)}));
}

TimerHandle DispatchMainQueue::runEvery(Seconds interval, Seconds leeway, Task task) {
  return std::make_unique<DispatchTimer>(
      interval, static_cast<std::uint64_t>(toNanoseconds(interval)), leeway, &runRepeating,
      std::make_unique<Scheduled>(Scheduled{life_, std::move(task)}));
}

}  // namespace vantora
