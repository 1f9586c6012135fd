// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

namespace vantora {

/// Calls back from a libuv loop while a descriptor can be read. Made, used and destroyed on the
/// loop's thread, while the loop is open.
class ReadableWatch {
 public:
  ReadableWatch() = default;
  /// No call comes after it, also where a call destroys the watch.
  ~ReadableWatch();
  ReadableWatch(const ReadableWatch&) = delete;
  ReadableWatch& operator=(const ReadableWatch&) = delete;

  /// Once. `descriptor` stays the caller's, who keeps it open as long as the watch lives; libuv
  /// makes it non-blocking. 0, or libuv's error (negative) where it cannot be watched, as a file
  /// cannot; then no call ever comes. One comes also when the other end is gone.
  [[nodiscard]] int start(uv_loop_t& loop, int descriptor, std::function<void()> onReadable);
  /// No call comes any more.
  void stop();
  /// The loop need not go on for this watch.
  void letLoopEnd();

 private:
  struct Handle;
  Handle* handle_ = nullptr;  // libuv's until it has closed it
};

}  // namespace vantora
