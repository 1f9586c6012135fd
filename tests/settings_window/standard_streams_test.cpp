// SPDX-License-Identifier: MIT
#include "settings/window/standard_streams.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "settings_window/window_fixture.hpp"

namespace vantora {
namespace {

class StandardStreamsTest : public test::WindowTest {
 protected:
  StandardStreamsTest() {
    std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(::pipe(in_), 0);
    EXPECT_EQ(::pipe(out_), 0);
    streams_.emplace(in_[0], out_[1]);
    streams_->onInput = [this](std::string_view bytes) { input_ += bytes; };
    streams_->onEnd = [this] { ++ends_; };
  }
  ~StandardStreamsTest() override {
    streams_.reset();
    for (const int end : {in_[0], in_[1], out_[0], out_[1]}) {
      ::close(end);
    }
  }
  void put(std::string_view bytes) {
    EXPECT_EQ(::write(in_[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  int in_[2] = {-1, -1};
  int out_[2] = {-1, -1};
  std::optional<StandardStreams> streams_;
  std::string input_;
  int ends_ = 0;
};

TEST_F(StandardStreamsTest, BringsWhatArrives) {
  put("one");
  EXPECT_TRUE(QTest::qWaitFor([&] { return input_ == "one"; }));
  EXPECT_EQ(ends_, 0);
}

TEST_F(StandardStreamsTest, TellsTheEndOnce) {
  put("last");
  ::close(std::exchange(in_[1], -1));
  EXPECT_TRUE(QTest::qWaitFor([&] { return ends_ > 0; }));
  QApplication::processEvents();
  EXPECT_EQ(input_, "last");
  EXPECT_EQ(ends_, 1);
  streams_->write("too late");
}

TEST_F(StandardStreamsTest, KeepsWhatTheAgentDoesNotTakeAtOnce) {
  const std::string large(1'000'000, 'x');
  streams_->write(large);
  streams_->write("end");
  std::string taken;
  char buffer[65536];
  EXPECT_TRUE(QTest::qWaitFor([&] {
    const ssize_t count = ::read(out_[0], buffer, sizeof buffer);
    taken.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    return taken.size() == large.size() + 3;
  }));
  EXPECT_TRUE(taken.ends_with("xend"));
}

TEST_F(StandardStreamsTest, EndsWhenTheAgentIsGone) {
  ::close(std::exchange(out_[0], -1));
  streams_->write("x");
  EXPECT_TRUE(QTest::qWaitFor([&] { return ends_ == 1; }));
}

}  // namespace
}  // namespace vantora
