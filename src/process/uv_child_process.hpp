// SPDX-License-Identifier: MIT
//
// Child processes on a libuv loop.
//
// Everything is non-blocking and lives on the loop that is there anyway, the main loop
// of the program. So a conversation needs no thread of its own, and between two of them
// nothing of it is left: no thread, no descriptor, no timer, no wake-up. (A platform
// whose main loop is not libuv's gives a UvQueueThread instead: the launcher only asks
// for a loop and a queue on the same thread.)
//
// A child leads a session and a process group of its own: the command-line tools asked
// here may be scripts that start the program proper, and it is the group that is ended,
// never the script alone. A guard ends it where this program no longer can
// (process/child_guard.hpp).
#pragma once

#include <uv.h>

#include <memory>

#include "process/child_process.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

class UvChildProcessLauncher final : public ChildProcessLauncher {
 public:
  /// How long a child that was asked to end may take before it is killed.
  static constexpr Seconds terminationGrace{2};

  /// `loop` and `queue` run on the same thread, the launcher's, and outlive it. `queue`
  /// times the grace.
  UvChildProcessLauncher(uv_loop_t& loop, TaskQueue& queue);

  /// The program's end: asks every child that is left to end, gives them all together a
  /// quarter of a second, then kills them. The one place that waits. No event follows.
  ~UvChildProcessLauncher() override;
  UvChildProcessLauncher(const UvChildProcessLauncher&) = delete;
  UvChildProcessLauncher& operator=(const UvChildProcessLauncher&) = delete;

  [[nodiscard]] Result<std::unique_ptr<ChildProcess>> start(const ChildProcessOptions& options,
                                                            ChildProcessEvents events) override;

 private:
  struct Family;
  struct Child;
  class Handle;

  std::shared_ptr<Family> family_;
};

}  // namespace vantora
