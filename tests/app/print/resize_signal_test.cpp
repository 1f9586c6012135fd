// SPDX-License-Identifier: MIT
#include "app/print/resize_signal.hpp"

#include <gtest/gtest.h>

#include <csignal>

#include "runtime/uv_loop.hpp"

namespace vantora {
namespace {

TEST(ResizeSignal, CallsOnTheLoopWhenTheTerminalsSizeChanges) {
  UvLoop loop;
  int calls = 0;
  const ResizeSignal resize(loop.raw(), [&] {
    if (++calls == 2) {
      loop.stop();
    } else {
      std::raise(SIGWINCH);
    }
  });
  loop.queue().post([] { std::raise(SIGWINCH); });
  loop.run();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace vantora
