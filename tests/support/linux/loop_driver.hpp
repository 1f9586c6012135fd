// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

#include "runtime/system_clock.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora::test {

/// Runs the loop until `isDone`; false when that takes longer than ten seconds.
inline bool runUntil(UvLoop& loop, const std::function<bool()>& isDone) {
  constexpr Seconds longest{10};
  const SystemClock clock;
  const Seconds start = clock.uptime();
  // Only so that the loop comes back when nothing happens.
  const TimerHandle tick = loop.queue().runEvery(Seconds{0.02}, Seconds{0}, [] {});
  while (!isDone()) {
    if (clock.uptime() - start > longest) {
      return false;
    }
    uv_run(&loop.raw(), UV_RUN_ONCE);
  }
  return true;
}

}  // namespace vantora::test
