// SPDX-License-Identifier: MIT
#include "app/print/print_session.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "app/app_world.hpp"
#include "app/print/print_stream.hpp"

namespace vantora::test {
namespace {

class PrintSessionTest : public testing::Test, protected AppWorld {
 protected:
  PrintSessionTest() {
    std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK), 0);
  }
  ~PrintSessionTest() override {
    closeReader();
    close(ends_[1]);
  }
  void closeReader() {
    if (ends_[0] >= 0) {
      close(std::exchange(ends_[0], -1));
    }
  }

  void start(const AppConfiguration& configuration, PrintOptions options,
             PrintSession::ReaderCheck check = PrintSession::ReaderCheck::atEachTick) {
    output_ = std::make_unique<PrintStream>(ends_[1], options.format, options.follow, false);
    session_ = std::make_unique<PrintSession>(options, *output_, *main, [this](int error) {
      ++ends;
      lastError = error;
    });
    make(configuration, *session_);
    session_->start(*coordinator, check);
    time.runPosted();
  }

  // What was printed since the last call.
  std::string printed() {
    std::array<char, 8192> buffer{};
    const ssize_t count = read(ends_[0], buffer.data(), buffer.size());
    return {buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
  }

  // Nothing more fits until the reader goes on.
  void fillPipe() {
    const std::array<char, 4096> block{};
    while (write(ends_[1], block.data(), block.size()) > 0) {
    }
  }
  void emptyPipe() {
    while (!printed().empty()) {
    }
  }

  int ends = 0;
  int lastError = -1;
  std::unique_ptr<PrintStream> output_;
  std::unique_ptr<PrintSession> session_;

 private:
  std::array<int, 2> ends_{-1, -1};
};

TEST_F(PrintSessionTest, PrintsOnceAfterTheSecondRound) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}), {});
  EXPECT_EQ(printed(), "");
  setUsage(30);
  time.advance(Seconds{0.999});
  EXPECT_EQ(ends, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(printed(), "30%\n");
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(lastError, 0);
  setUsage(40);
  time.advance(Seconds{90});
  EXPECT_EQ(printed(), "");
  EXPECT_EQ(ends, 1);
}

TEST_F(PrintSessionTest, PrintsAfterTheFirstRoundWhereNoTimerSamples) {
  start(showing({{MetricID::batteryPercent, MetricID::batteryTime}}), {});
  EXPECT_EQ(printed(), "— —\n");
  EXPECT_EQ(ends, 1);
}

TEST_F(PrintSessionTest, PrintsWhatThereIsWhenTheTimeIsUp) {
  PrintOptions options;
  options.timeout = Seconds{0.5};
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  time.advance(Seconds{0.499});
  EXPECT_EQ(ends, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(printed(), "—\n");
  EXPECT_EQ(ends, 1);
}

TEST_F(PrintSessionTest, IsWokenForNoTickThatChangesNothingWhereItsOwnerWatchesTheReader) {
  PrintOptions options;
  options.follow = true;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options,
        PrintSession::ReaderCheck::byItsOwner);
  setUsage(30);
  time.advance(Seconds{1});
  const int rounds = coordinator->samplingRounds();
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_EQ(coordinator->samplingRounds(), rounds);
  setUsage(31);
  time.advance(Seconds{1});
  EXPECT_EQ(printed(), "—\n30%\n31%\n");
}

TEST_F(PrintSessionTest, TakesEachTickForTheAgesOfTheGauges) {
  PrintOptions options;
  options.follow = true;
  options.format = PrintFormat::openMetrics;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options,
        PrintSession::ReaderCheck::byItsOwner);
  for (int tick = 0; tick < 3; ++tick) {
    setUsage(30);
    time.advance(Seconds{1});
  }
  EXPECT_EQ(coordinator->samplingRounds(), 4);
}

TEST_F(PrintSessionTest, RenewsTheGaugesEachMinuteThoughNothingChanges) {
  PrintOptions options;
  options.follow = true;
  options.format = PrintFormat::openMetrics;
  start(showing({{MetricID::batteryPercent, MetricID::none}}), options);
  EXPECT_NE(printed(), "");
  time.advance(Seconds{59});
  EXPECT_EQ(printed(), "");
  time.advance(Seconds{1});
  EXPECT_NE(printed(), "");
  time.advance(Seconds{60});
  EXPECT_NE(printed(), "");
}

TEST_F(PrintSessionTest, FollowsWithALineAtEveryChange) {
  PrintOptions options;
  options.follow = true;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  for (const std::uint64_t percent : {30U, 30U, 31U}) {
    setUsage(percent);
    time.advance(Seconds{1});
  }
  EXPECT_EQ(printed(), "—\n30%\n31%\n");
  EXPECT_EQ(ends, 0);
}

TEST_F(PrintSessionTest, FollowsForAsLongAsTheUserSaid) {
  PrintOptions options;
  options.follow = true;
  options.timeout = Seconds{100};
  options.hasTimeout = true;
  start(showing({{MetricID::batteryPercent, MetricID::none}}), options);
  time.advance(Seconds{99.9});
  EXPECT_EQ(ends, 0);
  time.advance(Seconds{0.1});
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(lastError, 0);
}

TEST_F(PrintSessionTest, FollowsWithoutEndOtherwise) {
  PrintOptions options;
  options.follow = true;
  start(showing({{MetricID::batteryPercent, MetricID::none}}), options);
  time.advance(Seconds{3600});
  EXPECT_EQ(ends, 0);
}

TEST_F(PrintSessionTest, EndsQuietlyWithoutAReaderEvenIfNothingChanges) {
  PrintOptions options;
  options.follow = true;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  closeReader();
  time.advance(Seconds{1});
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(lastError, 0);
}

TEST_F(PrintSessionTest, GivesAReaderThatStoppedReadingTheNewestStateOnceItReadsOn) {
  fillPipe();
  PrintOptions options;
  options.follow = true;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  for (const std::uint64_t percent : {30U, 31U, 32U}) {
    setUsage(percent);
    time.advance(Seconds{1});
  }
  emptyPipe();
  setUsage(32);
  time.advance(Seconds{1});
  EXPECT_EQ(printed(), "—\n32%\n");
  setUsage(33);
  time.advance(Seconds{1});
  EXPECT_EQ(printed(), "33%\n");
  EXPECT_EQ(ends, 0);
}

TEST_F(PrintSessionTest, EndsInTimeThoughTheReaderDoesNotRead) {
  fillPipe();
  PrintOptions options;
  options.follow = true;
  options.timeout = Seconds{3};
  options.hasTimeout = true;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  time.advance(Seconds{3});
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(lastError, 0);
}

TEST_F(PrintSessionTest, StaysWithASinglePrintUntilItIsRead) {
  fillPipe();
  start(showing({{MetricID::batteryPercent, MetricID::batteryTime}}), {});
  time.advance(Seconds{100});
  EXPECT_EQ(ends, 0);
  emptyPipe();
  time.advance(Seconds{1});
  EXPECT_EQ(printed(), "— —\n");
  EXPECT_EQ(ends, 1);
}

TEST_F(PrintSessionTest, EndsOnceWhenASignalAsksForIt) {
  PrintOptions options;
  options.follow = true;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  session_->stop();
  session_->stop();
  setUsage(50);
  time.advance(Seconds{5});
  EXPECT_EQ(printed(), "—\n");
  EXPECT_EQ(ends, 1);
}

TEST_F(PrintSessionTest, CarriesTheNoticeOfADocumentThatWasRefused) {
  PrintOptions options;
  options.format = PrintFormat::json;
  AppConfiguration tooFast = showing({{MetricID::batteryPercent, MetricID::none}});
  tooFast.intervalSeconds = 0;
  start(tooFast, options);
  time.advance(Seconds{2});
  EXPECT_THAT(printed(),
              testing::HasSubstr("Configuração inválida preservada em disco; padrão carregado."));
}

TEST_F(PrintSessionTest, PausesAndResumesWithoutTouchingTheConfiguration) {
  PrintOptions options;
  options.follow = true;
  options.format = PrintFormat::waybar;
  start(showing({{MetricID::cpuUsage, MetricID::none}}), options);
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_THAT(printed(), testing::HasSubstr("\"class\":\"running\""));
  session_->togglePause();
  time.advance(Seconds{1});
  EXPECT_THAT(printed(), testing::HasSubstr("\"class\":\"paused\""));
  setUsage(60);
  time.advance(Seconds{10});
  EXPECT_EQ(printed(), "");
  EXPECT_FALSE(coordinator->model().configuration().paused);
  session_->togglePause();
  time.advance(Seconds{1});
  setUsage(60);
  time.advance(Seconds{1});
  EXPECT_THAT(printed(), testing::HasSubstr("60%"));
}

TEST_F(PrintSessionTest, ResumesWhatTheConfigurationPauses) {
  AppConfiguration paused = showing({{MetricID::cpuUsage, MetricID::none}});
  paused.paused = true;
  PrintOptions options;
  options.follow = true;
  start(paused, options);
  printed();
  session_->togglePause();
  time.advance(Seconds{1});
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_THAT(printed(), testing::HasSubstr("30%"));
  EXPECT_TRUE(coordinator->model().configuration().paused);
}

}  // namespace
}  // namespace vantora::test
