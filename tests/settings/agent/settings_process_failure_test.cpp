// SPDX-License-Identifier: MIT
#include "settings/agent/settings_process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "model/words.hpp"
#include "settings/agent/settings_process_fixture.hpp"
#include "support/live_memory.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* brokenWindow = "A janela de configurações falhou e foi fechada.";
constexpr const char* hangingWindow = "A janela de configurações parou de responder e foi fechada.";

using SettingsProcessTest = test::SettingsProcessFixture;

TEST_F(SettingsProcessTest, SaysThatTheWindowCannotBeStarted) {
  launcher_.failStarts(Fault::failed("EACCES"));
  process_->show("");
  EXPECT_FALSE(process_->isVisible());
  EXPECT_THAT(failures_, ElementsAre("A janela de configurações não pôde ser aberta. "
                                     "/opt/vantora-settings: EACCES"));
}

TEST_F(SettingsProcessTest, SaysWhatToInstallWhereTheWindowIsNot) {
  launcher_.failStarts(Fault::absent("ENOENT"));
  process_->show("");
  EXPECT_FALSE(process_->isVisible());
  EXPECT_THAT(failures_,
              ElementsAre(std::string("A janela de configurações não pôde ser aberta. ") +
                          Words::windowProgramMissing));
}

TEST_F(SettingsProcessTest, SaysThatTheWindowEndedBeforeItOpened) {
  process_->show("");
  child().exit({1, 0});
  expectFailure("A janela de configurações não pôde ser aberta.");
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatDies) {
  open();
  child().exit({0, 11});
  expectFailure(brokenWindow);
  open();
  EXPECT_EQ(told_.notice, brokenWindow);
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatNeverBecomesReady) {
  process_->show("");
  EXPECT_EQ(queue_->lastLeeway(), Seconds{1});
  time_.advance(SettingsProcess::answerLimit - Seconds{0.001});
  EXPECT_TRUE(process_->isVisible());
  time_.advance(Seconds{0.001});
  expectFailure(hangingWindow);
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatHangs) {
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  time_.advance(SettingsProcess::answerLimit - Seconds{0.001});
  EXPECT_TRUE(process_->isVisible());
  time_.advance(Seconds{0.001});
  expectFailure(hangingWindow);
}

// A window that moves to another screen says `ready` again, whatever it has not shown yet.
TEST_F(SettingsProcessTest, WaitsForTheAnswerOfAWindowThatChangesItsScale) {
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  say(Ready{3});
  EXPECT_THAT(heard(), IsEmpty());
  answer();
  EXPECT_EQ(heardFields(), WindowFields{WindowField::picture});
  EXPECT_TRUE(process_->isVisible());
  say(Ready{2});
  time_.advance(SettingsProcess::answerLimit);
  expectFailure(hangingWindow);
}

TEST_F(SettingsProcessTest, LetsAWindowBeQuietWhileThereIsNothingToAnswer) {
  open();
  time_.advance(Seconds{100'000});
  EXPECT_TRUE(process_->isVisible());
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatWritesWithoutALineFeed) {
  open();
  const std::string piece(60'000, 'x');
  for (int count = 0; count < 5 && process_->isVisible(); ++count) {
    sayBytes(piece);
  }
  expectFailure(brokenWindow);
}

TEST_F(SettingsProcessTest, KeepsNoMemoryOfAWindowThatSaidTooMuch) {
  const std::size_t before = test::liveBytes();
  open();
  for (int count = 0; count < 4; ++count) {
    sayBytes(std::string(60'000, 'x'));
  }
  EXPECT_GT(test::liveBytes(), before + 240'000);
  exit();
  EXPECT_FALSE(process_->isVisible());
  // The scripted child remembers what it was sent, two pictures among it.
  EXPECT_LT(test::liveBytes(), before + 160'000);
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatFloodsItWithMessages) {
  open();
  const std::string line = *windowLine(Intent::scrolled);
  for (int count = 0; count <= SettingsProcess::messagesPerSecond && process_->isVisible();
       ++count) {
    sayBytes(line);
  }
  expectFailure(brokenWindow);
}

TEST_F(SettingsProcessTest, TakesAsManyMessagesAsASliderSends) {
  open();
  for (int second = 0; second < 10; ++second) {
    for (int frame = 0; frame < 240; ++frame) {
      sayBytes(*windowLine(Intent::scrolled));
    }
    time_.advance(Seconds{1});
  }
  EXPECT_TRUE(process_->isVisible());
}

TEST_F(SettingsProcessTest, CountsTheMessagesOfEachSecondAnew) {
  open();
  const std::string line = *windowLine(Intent::scrolled);
  for (int second = 0; second < 3; ++second) {
    time_.advance(Seconds{1});
    for (int count = 0; count < SettingsProcess::messagesPerSecond; ++count) {
      sayBytes(line);
    }
  }
  EXPECT_TRUE(process_->isVisible());
  time_.advance(Seconds{0.999});
  sayBytes(line);
  expectFailure(brokenWindow);
}

TEST_F(SettingsProcessTest, WaitsForTheRestOfALine) {
  open();
  const std::string line = *windowLine(StartAtLogin{true});
  sayBytes(line.substr(0, 10));
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::notRegistered);
  sayBytes(line.substr(10));
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::enabled);
}

TEST_F(SettingsProcessTest, DropsHalfALineThatAWindowLeft) {
  open();
  const std::string line = *windowLine(StartAtLogin{true});
  sayBytes(line.substr(0, line.size() - 1));
  exit();
  EXPECT_FALSE(process_->isVisible());
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::notRegistered);
  open();
}

TEST_F(SettingsProcessTest, EndsAWindowThatSpeaksOutOfTurn) {
  process_->show("");
  say(Intent::scrolled);
  expectFailure(brokenWindow);
  open();
  sayBytes("{\"type\":\"quit\"}\n");
  expectFailure(brokenWindow);
  open();
  say(Seen{77});
  expectFailure(brokenWindow);
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  say(Seen{sequence_ + 1});
  expectFailure(brokenWindow);
  open();
  const std::uint64_t first = sequence_;
  model_.setStartAtLogin(false);
  time_.runPosted();
  (void)heardFields();
  say(Seen{first});
  expectFailure(brokenWindow);
}

TEST_F(SettingsProcessTest, EndsAWindowThatNoLongerListens) {
  open();
  child().closeInput();
  model_.setStartAtLogin(true);
  time_.runPosted();
  EXPECT_FALSE(process_->isVisible());
}

}  // namespace
}  // namespace vantora
