// SPDX-License-Identifier: MIT
#include "runtime/termination_signals.hpp"

#include <gtest/gtest.h>

#include <csignal>

#include "runtime/uv_loop.hpp"

namespace vantora {
namespace {

TEST(TerminationSignals, EndTheLoopThatWatchesThem) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    UvLoop loop;
    int calls = 0;
    const TerminationSignals signals(loop.raw(), [&] {
      ++calls;
      loop.stop();
    });
    loop.queue().post([signal] { std::raise(signal); });
    loop.run();
    EXPECT_EQ(calls, 1);
  }
}

}  // namespace
}  // namespace vantora
