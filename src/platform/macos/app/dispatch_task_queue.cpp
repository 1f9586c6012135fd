// SPDX-License-Identifier: MIT
#include "platform/macos/app/dispatch_task_queue.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "platform/macos/base/autorelease_pool.hpp"

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
  const AutoreleasePool pool;
  const std::unique_ptr<Scheduled> posted(static_cast<Scheduled*>(context));
  if (!posted->life.expired()) {
    posted->task();
  }
}

void runRepeating(void* context) {
  const AutoreleasePool pool;
  const auto* scheduled = static_cast<const Scheduled*>(context);
  if (!scheduled->life.expired()) {
    scheduled->task();
  }
}

void runOnce(void* context) {
  const AutoreleasePool pool;
  auto* scheduled = static_cast<Scheduled*>(context);
  const TaskQueue::Task task = std::exchange(scheduled->task, nullptr);
  if (task && !scheduled->life.expired()) {
    task();
  }
}

void forget(void* context) {
  const AutoreleasePool pool;
  delete static_cast<Scheduled*>(context);
}

// A timer source. Dispatch calls the finalizer when the last reference has gone and no
// run is under way, so that a task may destroy its own handle.
class DispatchTimer final : public Timer {
 public:
  DispatchTimer(dispatch_queue_t queue, Seconds delay, std::uint64_t interval, Seconds leeway,
                dispatch_function_t run, std::unique_ptr<Scheduled> scheduled)
      : source_(dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, queue)) {
    dispatch_set_context(source_, scheduled.release());
    dispatch_set_finalizer_f(source_, &forget);
    dispatch_source_set_event_handler_f(source_, run);
    // DISPATCH_TIME_NOW uses the clock that stops while the machine sleeps.
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

void DispatchTaskQueue::post(Task task) {
  auto posted = std::make_unique<Scheduled>(Scheduled{life_, std::move(task)});
  dispatch_async_f(queue_, posted.release(), &runPosted);
}

TimerHandle DispatchTaskQueue::runAfter(Seconds delay, Seconds leeway, Task task) {
  return std::make_unique<DispatchTimer>(
      queue_, delay, DISPATCH_TIME_FOREVER, leeway, &runOnce,
      std::make_unique<Scheduled>(Scheduled{life_, std::move(task)}));
}

TimerHandle DispatchTaskQueue::runEvery(Seconds interval, Seconds leeway, Task task) {
  return std::make_unique<DispatchTimer>(
      queue_, interval, static_cast<std::uint64_t>(toNanoseconds(interval)), leeway, &runRepeating,
      std::make_unique<Scheduled>(Scheduled{life_, std::move(task)}));
}

DispatchMainQueue::DispatchMainQueue() : DispatchTaskQueue(dispatch_get_main_queue()) {}

DispatchSerialQueue::DispatchSerialQueue(const std::string& label)
    : DispatchTaskQueue(dispatch_queue_create(
          label.c_str(),
          dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_UTILITY, 0))) {}

DispatchSerialQueue::~DispatchSerialQueue() {
  end();
  dispatch_sync_f(raw(), nullptr, [](void*) {});
  dispatch_release(raw());
}

}  // namespace vantora
