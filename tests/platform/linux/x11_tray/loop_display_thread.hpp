// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "platform/linux/x11_tray/display_thread.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora::test {

/// The display's work on the test's own loop: everything happens in turn.
class LoopDisplayThread final : public DisplayThread {
 public:
  explicit LoopDisplayThread(UvLoop& loop) : loop_(loop) {}
  void post(Task task) override {
    loop_.queue().post([this, task = std::move(task)] { task(loop_.raw()); });
  }

 private:
  UvLoop& loop_;
};

}  // namespace vantora::test
