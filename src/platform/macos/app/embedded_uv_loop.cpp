// SPDX-License-Identifier: MIT
#include "platform/macos/app/embedded_uv_loop.hpp"

#include "platform/macos/base/autorelease_pool.hpp"

namespace vantora {

EmbeddedUvLoop::EmbeddedUvLoop()
    : readiness_(makeSource(this, DISPATCH_SOURCE_TYPE_READ,
                            static_cast<uintptr_t>(uv_backend_fd(&loop_.raw())))),
      timer_(makeSource(this, DISPATCH_SOURCE_TYPE_TIMER, 0)) {
  CFRunLoopObserverContext context{};
  context.info = this;
  observer_ = CFOwned<CFRunLoopObserverRef>(CFRunLoopObserverCreate(
      kCFAllocatorDefault, kCFRunLoopBeforeWaiting, /*repeats=*/1, /*order=*/0,
      [](CFRunLoopObserverRef, CFRunLoopActivity, void* info) {
        static_cast<EmbeddedUvLoop*>(info)->runOnce();
      },
      &context));
  // The common modes: an open menu runs the run loop in a mode of its own.
  CFRunLoopAddObserver(CFRunLoopGetMain(), observer_.get(), kCFRunLoopCommonModes);
}

EmbeddedUvLoop::~EmbeddedUvLoop() {
  CFRunLoopRemoveObserver(CFRunLoopGetMain(), observer_.get(), kCFRunLoopCommonModes);
  for (dispatch_source_t source : {readiness_, timer_}) {
    dispatch_source_cancel(source);
    dispatch_release(source);
  }
}

// Both only wake the run loop; what they are about happens in runOnce().
dispatch_source_t EmbeddedUvLoop::makeSource(EmbeddedUvLoop* self, dispatch_source_type_t type,
                                             uintptr_t handle) {
  dispatch_source_t source = dispatch_source_create(type, handle, 0, dispatch_get_main_queue());
  dispatch_set_context(source, self);
  dispatch_source_set_event_handler_f(
      source, [](void* context) { static_cast<EmbeddedUvLoop*>(context)->runOnce(); });
  if (type == DISPATCH_SOURCE_TYPE_TIMER) {
    dispatch_source_set_timer(source, DISPATCH_TIME_FOREVER, DISPATCH_TIME_FOREVER, 0);
  }
  dispatch_activate(source);
  return source;
}

void EmbeddedUvLoop::runOnce() {
  // libuv does not nest: a callback of its that runs the run loop must not come back.
  if (isRunning_) {
    return;
  }
  const AutoreleasePool pool;
  isRunning_ = true;
  uv_run(&loop_.raw(), UV_RUN_NOWAIT);
  const int milliseconds = uv_backend_timeout(&loop_.raw());
  isRunning_ = false;
  const bool hasTimer = milliseconds >= 0;
  if (hasTimer || isTimerArmed_) {
    isTimerArmed_ = hasTimer;
    const dispatch_time_t next =
        hasTimer ? dispatch_time(DISPATCH_TIME_NOW, std::int64_t{milliseconds} * 1'000'000)
                 : DISPATCH_TIME_FOREVER;
    dispatch_source_set_timer(timer_, next, DISPATCH_TIME_FOREVER, /*leeway=*/1'000'000);
  }
}

}  // namespace vantora
