// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

#include "runtime/readable_watch.hpp"
#include "runtime/unique_fd.hpp"

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

 private:
  // libuv makes what it polls non-blocking, for every program that has it: so it gets an epoll
  // instance of its own, which holds the descriptor.
  UniqueFd instance_;
  ReadableWatch watch_;
};

}  // namespace vantora
