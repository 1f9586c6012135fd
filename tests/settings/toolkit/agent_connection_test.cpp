// SPDX-License-Identifier: MIT
#include "settings/toolkit/agent_connection.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QApplication>
#include <QTest>
#include <csignal>
#include <optional>
#include <string>

namespace vantora {
namespace {

class AgentConnectionTest : public testing::Test {
 protected:
  AgentConnectionTest() {
    std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(::pipe(in_), 0);
    EXPECT_EQ(::pipe(out_), 0);
    connection_.emplace(in_[0], out_[1]);
    connection_->onInput = [this](std::string_view bytes) { input_ += bytes; };
    connection_->onEnd = [this] { ++ends_; };
  }
  ~AgentConnectionTest() override {
    connection_.reset();
    for (const int end : {in_[0], in_[1], out_[0], out_[1]}) {
      ::close(end);
    }
  }
  void put(std::string_view bytes) {
    EXPECT_EQ(::write(in_[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  int in_[2] = {-1, -1};
  int out_[2] = {-1, -1};
  std::optional<AgentConnection> connection_;
  std::string input_;
  int ends_ = 0;
};

TEST_F(AgentConnectionTest, BringsWhatArrives) {
  put("one");
  EXPECT_TRUE(QTest::qWaitFor([&] { return input_ == "one"; }));
  EXPECT_EQ(ends_, 0);
}

TEST_F(AgentConnectionTest, ReportsTheEndOnce) {
  put("last");
  ::close(std::exchange(in_[1], -1));
  EXPECT_TRUE(QTest::qWaitFor([&] { return ends_ > 0; }));
  QApplication::processEvents();
  EXPECT_EQ(input_, "last");
  EXPECT_EQ(ends_, 1);
  connection_->write("too late");
}

TEST_F(AgentConnectionTest, KeepsWhatTheAgentDoesNotTakeAtOnce) {
  const std::string large(1'000'000, 'x');
  connection_->write(large);
  connection_->write("end");
  std::string taken;
  char buffer[65536];
  EXPECT_TRUE(QTest::qWaitFor([&] {
    const ssize_t count = ::read(out_[0], buffer, sizeof buffer);
    taken.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    return taken.size() == large.size() + 3;
  }));
  EXPECT_TRUE(taken.ends_with("xend"));
}

TEST_F(AgentConnectionTest, EndsWhenTheAgentIsGone) {
  ::close(std::exchange(out_[0], -1));
  connection_->write("x");
  EXPECT_EQ(ends_, 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return ends_ == 1; }));
}

}  // namespace
}  // namespace vantora
