// SPDX-License-Identifier: MIT
#include "app/print/print_stream.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <tuple>

#include "model/json.hpp"
#include "status/status_modules.hpp"

namespace vantora {
namespace {

class PrintStreamTest : public testing::Test {
 protected:
  PrintStreamTest() {
    configuration_.modules.resize(1);
    configuration_.modules[0].top = MetricID::cpuUsage;
    configuration_.modules[0].bottom = MetricID::none;
    EXPECT_EQ(pipe2(ends_, O_CLOEXEC), 0);
    std::signal(SIGPIPE, SIG_IGN);
  }
  ~PrintStreamTest() override {
    closeReader();
    close(ends_[1]);
  }

  void closeReader() {
    if (ends_[0] >= 0) {
      close(ends_[0]);
      ends_[0] = -1;
    }
  }

  void setUsage(double percent) {
    snapshot_.samples.set(MetricID::cpuUsage, MetricSample::valid(percent, "", WallTime{}));
  }
  void showAlso(MetricID metric) { configuration_.modules[0].bottom = metric; }
  void showManyModules() {
    configuration_.modules.resize(ConfigurationLimits::modules, configuration_.modules[0]);
    presentation_.accessibilityText.assign(8000, 'x');
  }
  // What was drawn of the readings.
  [[nodiscard]] PrintReport report() {
    StatusModules::read(configuration_, snapshot_, WallTime{}, presentation_.modules);
    return {configuration_, snapshot_, presentation_, notice_};
  }
  // What was written since the last call; the tests write less than a pipe holds.
  std::string written() {
    char buffer[4096];
    const ssize_t count = read(ends_[0], buffer, sizeof buffer);
    return {buffer, static_cast<std::size_t>(count > 0 ? count : 0)};
  }
  [[nodiscard]] int descriptor() const { return ends_[1]; }

 private:
  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
  StatusPresentation presentation_;
  std::optional<std::string> notice_;
  int ends_[2] = {-1, -1};
};

TEST_F(PrintStreamTest, WritesALineAPrintWhereNoTerminalReads) {
  PrintStream output(descriptor(), PrintFormat::text, true, false);
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  setUsage(2);
  EXPECT_EQ(output.print(report()), 0);
  output.finish();
  EXPECT_EQ(written(), "1%\n2%\n");
}

TEST_F(PrintStreamTest, WritesTheTextAsItIsOnATerminalToo) {
  PrintStream output(descriptor(), PrintFormat::text, true, true);
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  setUsage(2);
  EXPECT_EQ(output.print(report()), 0);
  output.finish();
  EXPECT_EQ(written(), "1%\n2%\n");
}

TEST_F(PrintStreamTest, DrawsTheListAgainInPlaceOnATerminal) {
  showAlso(MetricID::upload);
  PrintStream output(descriptor(), PrintFormat::list, true, true);
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(written(),
            "\x1b[2KCPU · uso total  1%\n"
            "\x1b[2KRede · upload     —  Aguardando a primeira leitura\x1b[J");
  setUsage(12);
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(written(),
            "\r\x1b[1A\x1b[2KCPU · uso total  12%\n"
            "\x1b[2KRede · upload      —  Aguardando a primeira leitura\x1b[J");
  output.finish();
  EXPECT_EQ(written(), "\n");
}

TEST_F(PrintStreamTest, DrawsAListOfOneLineInPlaceWithoutLeavingIt) {
  PrintStream output(descriptor(), PrintFormat::list, true, true);
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  (void)written();
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(written(), "\r\x1b[2KCPU · uso total  1%\x1b[J");
}

TEST_F(PrintStreamTest, BeginsAtTheTopOfAClearedTerminalAfterAResize) {
  PrintStream output(descriptor(), PrintFormat::list, true, true);
  EXPECT_FALSE(output.resized());  // nothing is drawn yet
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  (void)written();
  EXPECT_TRUE(output.resized());
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(written(), "\x1b[H\x1b[J\x1b[2KCPU · uso total  1%\x1b[J");
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(written(), "\r\x1b[2KCPU · uso total  1%\x1b[J");
}

TEST_F(PrintStreamTest, TakesNoNoticeOfAResizeWhereNothingIsDrawnInPlace) {
  for (const auto& [format, follow, isTerminal] : {std::tuple{PrintFormat::list, true, false},
                                                   {PrintFormat::list, false, true},
                                                   {PrintFormat::text, true, true},
                                                   {PrintFormat::json, true, true}}) {
    PrintStream output(descriptor(), format, follow, isTerminal);
    setUsage(1);
    EXPECT_EQ(output.print(report()), 0);
    EXPECT_FALSE(output.resized());
  }
}

TEST_F(PrintStreamTest, WritesPlainLinesOfAListThatIsPrintedOnce) {
  PrintStream output(descriptor(), PrintFormat::list, false, true);
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  output.finish();
  EXPECT_EQ(written(), "CPU · uso total  1%\n");
}

TEST_F(PrintStreamTest, SeparatesTheListsInAPipeByAnEmptyLine) {
  PrintStream output(descriptor(), PrintFormat::list, true, false);
  setUsage(1);
  EXPECT_EQ(output.print(report()), 0);
  EXPECT_EQ(output.print(report()), 0);
  output.finish();
  EXPECT_EQ(written(), "CPU · uso total  1%\n\nCPU · uso total  1%\n\n");
}

TEST_F(PrintStreamTest, WritesAWholeJsonDocumentForI3bar) {
  for (const bool follow : {false, true}) {
    PrintStream output(descriptor(), PrintFormat::i3bar, follow, false);
    setUsage(1);
    EXPECT_EQ(output.print(report()), 0);
    if (follow) {
      EXPECT_EQ(output.print(report()), 0);
    }
    output.finish();
    const std::string text = written();
    const std::size_t headerEnd = text.find('\n');
    EXPECT_EQ(text.substr(0, headerEnd), R"({"version":1})");
    const auto body = parseJson(text.substr(headerEnd));
    ASSERT_TRUE(body) << text;
    EXPECT_EQ((*body)[0][0]["full_text"], "1%");
  }
}

TEST_F(PrintStreamTest, AsksI3barForClicksOnlyWhereTheyAreRead) {
  for (const bool readsClicks : {false, true}) {
    PrintStream output(descriptor(), PrintFormat::i3bar, true, false, readsClicks);
    EXPECT_EQ(output.print(report()), 0);
    const std::string text = written();
    EXPECT_EQ(text.substr(0, text.find('\n')),
              readsClicks ? R"({"version":1,"click_events":true})" : R"({"version":1})");
  }
}

TEST_F(PrintStreamTest, KeepsWhatTheReaderDoesNotTakeInsteadOfWaitingForIt) {
  // A line larger than the pipe, so that it goes in pieces.
  const int room = fcntl(descriptor(), F_SETPIPE_SZ, 4096);
  ASSERT_GE(room, 4096);
  showManyModules();
  PrintStream output(descriptor(), PrintFormat::json, true, false);
  ASSERT_EQ(output.print(report()), 0);
  EXPECT_TRUE(output.isBehind());
  std::string text;
  for (int pieces = 0; pieces < 100 && output.isBehind(); ++pieces) {
    text += written();
    EXPECT_EQ(output.catchUp(), 0);
  }
  text += written();
  EXPECT_EQ(text, PrintFormatter::jsonLine(report()) + "\n");
}

TEST_F(PrintStreamTest, WritesNothingMoreToAReaderThatIsBehind) {
  ASSERT_GE(fcntl(descriptor(), F_SETPIPE_SZ, 4096), 4096);
  // The only page of the pipe is taken.
  ASSERT_EQ(write(descriptor(), "?", 1), 1);
  PrintStream output(descriptor(), PrintFormat::i3bar, true, false);
  ASSERT_EQ(output.print(report()), 0);
  ASSERT_TRUE(output.isBehind());
  output.finish();
  EXPECT_EQ(written(), "?");
  EXPECT_TRUE(output.isBehind());
}

TEST_F(PrintStreamTest, SaysWhenTheReaderIsGone) {
  PrintStream output(descriptor(), PrintFormat::json, true, false);
  EXPECT_TRUE(output.hasReader());
  closeReader();
  EXPECT_FALSE(output.hasReader());
  EXPECT_EQ(output.print(report()), EPIPE);
}

}  // namespace
}  // namespace vantora
