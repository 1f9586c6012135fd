// SPDX-License-Identifier: MIT
//
// The thread that waits for the X server, so that the main loop never does: connecting,
// every reply and every full socket block for as long as the server is silent.
#pragma once

#include <uv.h>

#include <functional>
#include <memory>
#include <thread>

#include "model/time.hpp"

namespace vantora {

class DisplayThread {
 public:
  using Task = std::function<void(uv_loop_t& loop)>;

  virtual ~DisplayThread() = default;
  /// Runs `task` on the thread, after those posted before, with the thread's loop. Main
  /// thread; returns at once. A task that has not begun when the thread ends is dropped.
  virtual void post(Task task) = 0;
};

/// A thread of its own, started by the first task. Main thread.
class OwnDisplayThread final : public DisplayThread {
 public:
  /// How long the destructor waits for the task under way. A thread that hangs for longer
  /// is abandoned: it ends with the process and calls nothing by then.
  static constexpr Seconds endLimit{1};

  OwnDisplayThread();
  ~OwnDisplayThread() override;
  OwnDisplayThread(const OwnDisplayThread&) = delete;
  OwnDisplayThread& operator=(const OwnDisplayThread&) = delete;

  void post(Task task) override;

 private:
  struct Shared;
  void start();

  std::shared_ptr<Shared> shared_;  // with the thread; null before the first task
  std::thread thread_;
};

}  // namespace vantora
