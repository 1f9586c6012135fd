// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

namespace vantora {

/// Turns SIGWINCH, which says that the terminal has another size, into calls on a loop. On
/// the loop's thread, for as long as the loop exists.
class ResizeSignal {
 public:
  ResizeSignal(uv_loop_t& loop, std::function<void()> onResize);
  ~ResizeSignal();
  ResizeSignal(const ResizeSignal&) = delete;
  ResizeSignal& operator=(const ResizeSignal&) = delete;

 private:
  struct Watch;
  Watch* watch_;
};

}  // namespace vantora
