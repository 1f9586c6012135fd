// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

namespace vantora {

/// Detects that the other end of a descriptor is gone: the last reader of a pipe or socket, or the
/// terminal. Never reports a file. Linux; made and destroyed on the loop's thread, while the loop
/// is open.
class ReaderWatch {
 public:
  /// Calls `onGone` once, from the loop. Neither owns nor changes `descriptor`, which may be
  /// shared with other programs and must stay open. Where the system has no descriptor left,
  /// it never calls, and only a write fails.
  ReaderWatch(uv_loop_t& loop, int descriptor, std::function<void()> onGone);
  ~ReaderWatch();
  ReaderWatch(const ReaderWatch&) = delete;
  ReaderWatch& operator=(const ReaderWatch&) = delete;

 private:
  struct Watch;
  Watch* watch_ = nullptr;
};

}  // namespace vantora
