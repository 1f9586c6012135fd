// SPDX-License-Identifier: MIT
//
// A libuv loop on the main thread, inside of the application's run loop: for what the
// portable code does with libuv there (child processes, signals), while AppKit has the
// thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include "platform/macos/base/core_foundation.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora {

/// Made and destroyed on the main thread. Runs the loop, without ever waiting in it,
/// whenever the run loop is about to wait, so that whatever was started meanwhile is
/// under way; wakes the run loop when the loop's descriptor or its next timer asks for
/// it. While nothing is started it costs no wake-up.
class EmbeddedUvLoop {
 public:
  EmbeddedUvLoop();
  ~EmbeddedUvLoop();
  EmbeddedUvLoop(const EmbeddedUvLoop&) = delete;
  EmbeddedUvLoop& operator=(const EmbeddedUvLoop&) = delete;

  [[nodiscard]] uv_loop_t& raw() { return loop_.raw(); }

 private:
  void runOnce();
  static dispatch_source_t makeSource(EmbeddedUvLoop* self, dispatch_source_type_t type,
                                      uintptr_t handle);

  UvLoop loop_;
  bool isRunning_ = false;
  bool isTimerArmed_ = false;
  CFOwned<CFRunLoopObserverRef> observer_;
  dispatch_source_t readiness_;
  dispatch_source_t timer_;
};

}  // namespace vantora
