// SPDX-License-Identifier: MIT
#include "app/print/reader_watch.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <utility>

#include "runtime/uv_loop.hpp"

namespace vantora {
namespace {

class ReaderWatchTest : public testing::Test {
 protected:
  ReaderWatchTest() { EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0); }
  ~ReaderWatchTest() override {
    closeReader();
    close(ends_[1]);
  }
  void closeReader() {
    if (ends_[0] >= 0) {
      close(std::exchange(ends_[0], -1));
    }
  }
  void turn() { uv_run(&loop_.raw(), UV_RUN_NOWAIT); }

  UvLoop loop_;
  std::array<int, 2> ends_{-1, -1};
  int calls_ = 0;
};

TEST_F(ReaderWatchTest, NoticesThatTheReaderOfAPipeIsGone) {
  const ReaderWatch watch(loop_.raw(), ends_[1], [this] { ++calls_; });
  turn();
  EXPECT_EQ(calls_, 0);
  closeReader();
  turn();
  EXPECT_EQ(calls_, 1);
}

TEST_F(ReaderWatchTest, NoticesAReaderThatWasGoneBefore) {
  closeReader();
  const ReaderWatch watch(loop_.raw(), ends_[1], [this] { ++calls_; });
  turn();
  EXPECT_EQ(calls_, 1);
}

TEST_F(ReaderWatchTest, NoticesATerminalThatIsClosed) {
  const int window = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(window, 0);
  ASSERT_EQ(grantpt(window), 0);
  ASSERT_EQ(unlockpt(window), 0);
  const int terminal = open(ptsname(window), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(terminal, 0);
  const ReaderWatch watch(loop_.raw(), terminal, [this] { ++calls_; });
  turn();
  EXPECT_EQ(calls_, 0);
  close(window);
  turn();
  EXPECT_EQ(calls_, 1);
  close(terminal);
}

// Level-triggered: it would take a core.
TEST_F(ReaderWatchTest, CallsOnceAndRests) {
  const ReaderWatch watch(loop_.raw(), ends_[1], [this] { ++calls_; });
  closeReader();
  turn();
  turn();
  EXPECT_EQ(calls_, 1);
  pollfd loop{uv_backend_fd(&loop_.raw()), POLLIN, 0};
  EXPECT_EQ(poll(&loop, 1, 0), 0) << "nothing left to wake it up";
}

TEST_F(ReaderWatchTest, LeavesTheDescriptorAsItWas) {
  {
    const ReaderWatch watch(loop_.raw(), ends_[1], [] {});
    turn();
    EXPECT_EQ(fcntl(ends_[1], F_GETFL) & O_NONBLOCK, 0);
  }
  turn();
  EXPECT_EQ(write(ends_[1], "x", 1), 1);
}

TEST_F(ReaderWatchTest, TakesAFileAndAClosedDescriptorForRead) {
  const int file = open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
  const ReaderWatch ofFile(loop_.raw(), file, [this] { ++calls_; });
  const ReaderWatch ofNothing(loop_.raw(), -1, [this] { ++calls_; });
  turn();
  EXPECT_EQ(calls_, 0);
  close(file);
}

}  // namespace
}  // namespace vantora
