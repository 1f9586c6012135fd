// SPDX-License-Identifier: MIT
#include "runtime/readable_watch.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>

#include "runtime/unique_fd.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora::test {
namespace {

struct Pipe {
  UniqueFd reader;
  UniqueFd writer;

  Pipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    reader = UniqueFd(ends[0]);
    writer = UniqueFd(ends[1]);
  }
  void write() const { EXPECT_EQ(::write(writer.get(), "x", 1), 1); }
  void read() const {
    char byte = 0;
    EXPECT_EQ(::read(reader.get(), &byte, 1), 1);
  }
};

struct ReadableWatchTest : testing::Test {
  UvLoop loop;
  Pipe pipe;
  int calls = 0;
  std::unique_ptr<ReadableWatch> watch = std::make_unique<ReadableWatch>();

  void turn() { uv_run(&loop.raw(), UV_RUN_NOWAIT); }
};

TEST_F(ReadableWatchTest, CallsAsLongAsThereIsSomethingToRead) {
  ASSERT_EQ(watch->start(loop.raw(), pipe.reader.get(), [&] { ++calls; }), 0);
  turn();
  EXPECT_EQ(calls, 0);
  pipe.write();
  turn();
  turn();
  EXPECT_EQ(calls, 2);
  pipe.read();
  turn();
  EXPECT_EQ(calls, 2);
}

TEST_F(ReadableWatchTest, CallsWhenTheOtherEndIsGone) {
  ASSERT_EQ(watch->start(loop.raw(), pipe.reader.get(), [&] { ++calls; }), 0);
  pipe.writer.reset();
  turn();
  EXPECT_EQ(calls, 1);
}

TEST_F(ReadableWatchTest, IsSilentOnceStopped) {
  ASSERT_EQ(watch->start(loop.raw(), pipe.reader.get(), [&] { ++calls; }), 0);
  pipe.write();
  watch->stop();
  turn();
  EXPECT_EQ(calls, 0);
}

TEST_F(ReadableWatchTest, MayBeDestroyedByItsOwnCall) {
  ASSERT_EQ(watch->start(loop.raw(), pipe.reader.get(),
                         [this, kept = std::make_shared<int>(7)] {
                           watch.reset();
                           calls += *kept;
                         }),
            0);
  pipe.write();
  turn();
  turn();
  EXPECT_EQ(calls, 7);
}

TEST_F(ReadableWatchTest, SaysThatAFileCannotBeWatched) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  ASSERT_NE(file, nullptr);
  EXPECT_LT(watch->start(loop.raw(), fileno(file.get()), [&] { ++calls; }), 0);
  watch->stop();
  watch->letLoopEnd();
  turn();
  EXPECT_EQ(calls, 0);
}

TEST_F(ReadableWatchTest, KeepsTheLoopGoingUnlessItNeedNot) {
  uv_loop_t bare;
  ASSERT_EQ(uv_loop_init(&bare), 0);
  ASSERT_EQ(watch->start(bare, pipe.reader.get(), [&] { ++calls; }), 0);
  EXPECT_NE(uv_loop_alive(&bare), 0);
  watch->letLoopEnd();
  EXPECT_EQ(uv_loop_alive(&bare), 0);
  watch.reset();
  uv_run(&bare, UV_RUN_DEFAULT);
  EXPECT_EQ(uv_loop_close(&bare), 0);
}

}  // namespace
}  // namespace vantora::test
