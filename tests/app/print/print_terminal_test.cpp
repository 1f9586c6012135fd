// SPDX-License-Identifier: MIT
//
// The list on a real terminal: a pseudoterminal of a size that the test chooses.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <string>

#include "app/print/print_stream.hpp"
#include "status/status_modules.hpp"

namespace vantora {
namespace {

class PrintTerminalTest : public testing::Test {
 protected:
  PrintTerminalTest() {
    EXPECT_EQ(grantpt(screen_), 0);
    EXPECT_EQ(unlockpt(screen_), 0);
    terminal_ = open(ptsname(screen_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(terminal_, 0);
    configuration_.modules.resize(1);
    configuration_.modules[0].top = MetricID::cpuUsage;
    configuration_.modules[0].bottom = MetricID::upload;
    snapshot_.samples.set(MetricID::cpuUsage, MetricSample::valid(1, "", WallTime{}));
  }
  ~PrintTerminalTest() override {
    close(terminal_);
    close(screen_);
  }

  void resize(unsigned short rows, unsigned short columns) {
    const winsize size{rows, columns, 0, 0};
    EXPECT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
  }
  [[nodiscard]] PrintReport report() {
    StatusModules::read(configuration_, snapshot_, WallTime{}, presentation_.modules);
    return {configuration_, snapshot_, presentation_, notice_};
  }
  std::string shown() {
    char buffer[4096];
    const ssize_t count = read(screen_, buffer, sizeof buffer);
    return {buffer, static_cast<std::size_t>(count > 0 ? count : 0)};
  }
  [[nodiscard]] int terminal() const { return terminal_; }

 private:
  const int screen_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  int terminal_ = -1;
  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
  StatusPresentation presentation_;
  std::optional<std::string> notice_;
};

TEST_F(PrintTerminalTest, FitsItsWidthAndTheNewOneAfterAResize) {
  resize(24, 30);
  PrintStream output(terminal(), PrintFormat::list, true, true);
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(shown(), "\x1b[2KCPU · uso total  1%\r\n\x1b[2KRede · upload     —  Aguardan…\x1b[J");
  resize(24, 21);
  ASSERT_TRUE(output.resized());
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(shown(), "\x1b[H\x1b[J\x1b[2KCPU · uso total  1%\r\n\x1b[2KRede · upload     —\x1b[J");
}

TEST_F(PrintTerminalTest, ShowsAsManyLinesAsItHasAndHowManyAreLeft) {
  resize(1, 80);
  PrintStream output(terminal(), PrintFormat::list, true, true);
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(shown(), "\x1b[2K… e mais 2\x1b[J");
}

}  // namespace
}  // namespace vantora
