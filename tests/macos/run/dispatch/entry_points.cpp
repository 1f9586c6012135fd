// SPDX-License-Identifier: MIT
//
// The functions of dispatch/dispatch.h.
#include <dispatch/dispatch.h>

#include <future>

#include "dispatch/queues.hpp"
#include "objc/fault.hpp"

struct StandInQueueAttributes {
  qos_class_t quality;
};

extern "C" {

const StandInSourceType standInTimerSource{true};
const StandInSourceType standInReadSource{false};

dispatch_queue_t dispatch_get_main_queue() {
  return &standin::Dispatch::mainQueue();
}

dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t attributes,
                                                              qos_class_t quality, int relative) {
  if (attributes != DISPATCH_QUEUE_SERIAL || relative > 0) {
    standin::fault("the stand-in of Dispatch knows serial queues without attributes alone");
  }
  static StandInQueueAttributes utility{QOS_CLASS_UTILITY};
  static StandInQueueAttributes initiated{QOS_CLASS_USER_INITIATED};
  return quality == QOS_CLASS_UTILITY ? &utility : &initiated;
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
  auto* queue = new StandInQueue;
  queue->label = label;
  if (attributes != nullptr) {
    queue->quality = attributes->quality;
  }
  const std::lock_guard lock(standin::Dispatch::mutex());
  standin::Dispatch::living().queues.insert(queue);
  queue->worker = std::thread([queue] { standin::Dispatch::work(*queue); });
  return queue;
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  const std::lock_guard lock(standin::Dispatch::mutex());
  queue->work.push_back({work, context});
  standin::Dispatch::wake(*queue);
}

void dispatch_sync_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  if (queue->isMain || queue->worker.get_id() == std::this_thread::get_id()) {
    standin::fault("dispatch_sync on queue %s would wait for itself", queue->label.c_str());
  }
  struct Waiting {
    void* context;
    dispatch_function_t work;
    std::promise<void> done;
  } waiting{context, work, {}};
  dispatch_async_f(queue, &waiting, [](void* pointer) {
    auto* asked = static_cast<Waiting*>(pointer);
    asked->work(asked->context);
    asked->done.set_value();
  });
  waiting.done.get_future().wait();
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         unsigned long, dispatch_queue_t queue) {
  auto* source = new StandInSource;
  source->isTimer = type->isTimer;
  source->descriptor = type->isTimer ? -1 : static_cast<int>(handle);
  source->target = queue;
  const std::lock_guard lock(standin::Dispatch::mutex());
  standin::Dispatch::retain(*queue);
  standin::Dispatch::living().sources.insert(source);
  return source;
}

void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler) {
  source->handler = handler;
}

void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval,
                               uint64_t leeway) {
  const std::lock_guard lock(standin::Dispatch::mutex());
  if (!source->isTimer) {
    standin::fault("a time is set for a source that is no timer");
  }
  source->due = start;
  source->interval = interval;
  source->leeway = leeway;
  standin::Dispatch::wake(*source->target);
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t nanoseconds) {
  if (when == DISPATCH_TIME_FOREVER) {
    return when;
  }
  const std::uint64_t from = when == DISPATCH_TIME_NOW ? standin::Dispatch::now() : when;
  return from + static_cast<std::uint64_t>(nanoseconds);
}

void dispatch_source_cancel(dispatch_source_t source) {
  const std::lock_guard lock(standin::Dispatch::mutex());
  source->isCancelled = true;
  std::erase(source->target->sources, source);
  standin::Dispatch::wake(*source->target);
}

void standInSetContext(void* object, void* context) {
  static_cast<StandInObject*>(object)->context = context;
}

void standInSetFinalizer(void* object, dispatch_function_t finalizer) {
  static_cast<StandInObject*>(object)->finalizer = finalizer;
}

void standInActivate(void* object) {
  auto* source = static_cast<StandInSource*>(static_cast<StandInObject*>(object));
  const std::lock_guard lock(standin::Dispatch::mutex());
  if (source->isActive) {
    standin::fault("a source is activated twice");
  }
  if (source->handler == nullptr) {
    standin::fault("a source is activated without a handler");
  }
  source->isActive = true;
  source->target->sources.push_back(source);
  standin::Dispatch::wake(*source->target);
}

void standInRelease(void* object) {
  std::unique_lock lock(standin::Dispatch::mutex());
  standin::Dispatch::release(*static_cast<StandInObject*>(object), lock);
}

}  // extern "C"
