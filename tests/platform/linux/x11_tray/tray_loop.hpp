// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>
#include <memory>

#include "platform/linux/x11_tray/scripted_tray.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

/// Lets the loop, the tray, if there is one, and the tasks that are due do what has arrived until
/// `isDone`; false when that takes longer than ten seconds.
inline bool runUntil(UvLoop& loop, const std::unique_ptr<ScriptedTray>& tray, VirtualTime& time,
                     const std::function<bool()>& isDone) {
  return runUntil(loop, [&] {
    if (tray != nullptr) {
      tray->handleEvents();
    }
    time.runPosted();
    return isDone();
  });
}

/// Whatever either side has sent has arrived at the other, and was handled.
inline void exchange(UvLoop& loop, ScriptedTray& tray, VirtualTime& time) {
  for (int turn = 0; turn < 8; ++turn) {
    (void)tray.size();  // a round trip
    uv_run(&loop.raw(), UV_RUN_NOWAIT);
    tray.handleEvents();
    time.runPosted();
  }
}

}  // namespace vantora::test
