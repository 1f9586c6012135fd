// SPDX-License-Identifier: MIT
#include "settings/agent/menu_process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/words.hpp"
#include "settings/agent/child_test.hpp"

namespace vantora {
namespace {

using namespace MenuProtocol;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* unopenedMenu = "O menu não pôde ser aberto.";
constexpr const char* brokenMenu = "O menu falhou e foi fechado.";
constexpr const char* hangingMenu = "O menu não respondeu e foi fechado.";

class MenuProcessTest : public test::ChildTest {
 protected:
  MenuProcessTest() {
    menu_.onFailure = [this](const std::string& message) { failures_.push_back(message); };
  }

  void open() {
    menu_.open(content_, [this](std::int32_t id) { chosen_.push_back(id); });
    time_.runPosted();
  }
  void expectFailure(const char* message) {
    time_.runPosted();
    EXPECT_THAT(failures_, ElementsAre(message));
    EXPECT_THAT(chosen_, IsEmpty());
    EXPECT_TRUE(child().isTerminated());
    EXPECT_EQ(time_.pendingCount(), 0U);
  }

  MenuContent content_{{{1, "Configurações…"}, {3, "Sair"}}, {850, 14}, {780, 1, 150, 26}, true};
  std::vector<std::int32_t> chosen_;
  MenuProcess menu_{{*queue_, launcher_, "/opt/vantora-settings", {{"QT_QPA_PLATFORM", "xcb"}}}};
};

TEST_F(MenuProcessTest, SendsTheMenuToTheProgram) {
  open();
  EXPECT_EQ(child().options().executable, "/opt/vantora-settings");
  EXPECT_THAT(child().options().arguments, ElementsAre("--menu"));
  EXPECT_EQ(child().options().environmentChanges.at("QT_QPA_PLATFORM"), "xcb");
  const auto lines = child().takeInputLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(readMenuLine(lines[0]), content_);
}

TEST_F(MenuProcessTest, LeavesTheToolkitNoBusToStart) {
  const auto with = MenuProcess::onX11("unix:path=/run/user/1000/bus");
  EXPECT_EQ(with.at("DBUS_SESSION_BUS_ADDRESS"), "unix:path=/run/user/1000/bus");
  EXPECT_EQ(with.at("QT_QPA_PLATFORM"), "xcb");
  EXPECT_EQ(MenuProcess::onX11("").at("DBUS_SESSION_BUS_ADDRESS"), "disabled:");
}

TEST_F(MenuProcessTest, PassesTheChoiceOnOnce) {
  open();
  sayBytes(answerLine(Shown{}));
  EXPECT_THAT(chosen_, IsEmpty());
  sayBytes(answerLine(Chosen{3}) + answerLine(Chosen{3}));
  EXPECT_THAT(chosen_, ElementsAre(3));
  EXPECT_TRUE(child().isTerminated());
  EXPECT_THAT(failures_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(MenuProcessTest, ChoosesNothingWhenTheMenuIsGivenUp) {
  open();
  sayBytes(answerLine(Shown{}));
  exit();
  EXPECT_THAT(chosen_, IsEmpty());
  EXPECT_THAT(failures_, IsEmpty());
  open();
  EXPECT_EQ(launcher_.started().size(), 2U);
}

TEST_F(MenuProcessTest, PutsAnotherMenuInThePlaceOfTheFirst) {
  open();
  sayBytes(answerLine(Shown{}));
  const auto first = launcher_.started().back();
  content_.entries = {{2, "Retomar"}};
  open();
  EXPECT_TRUE(first->isTerminated());
  first->output(answerLine(Chosen{1}));
  time_.runPosted();
  EXPECT_THAT(chosen_, IsEmpty());
  sayBytes(answerLine(Shown{}));
  sayBytes(answerLine(Chosen{2}));
  EXPECT_THAT(chosen_, ElementsAre(2));
}

TEST_F(MenuProcessTest, OpensTheNextMenuFromTheChoice) {
  menu_.open(content_, [this](std::int32_t) { open(); });
  sayBytes(answerLine(Shown{}) + answerLine(Chosen{1}));
  EXPECT_EQ(launcher_.started().size(), 2U);
  EXPECT_FALSE(child().isTerminated());
  sayBytes(answerLine(Shown{}) + answerLine(Chosen{3}));
  EXPECT_THAT(chosen_, ElementsAre(3));
}

TEST_F(MenuProcessTest, ClosesTheMenu) {
  open();
  menu_.close();
  EXPECT_TRUE(child().isTerminated());
  menu_.close();
  time_.runPosted();
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_THAT(failures_, IsEmpty());
}

TEST_F(MenuProcessTest, EndsTheMenuWithItself) {
  {
    MenuProcess menu({*queue_, launcher_, "/opt/vantora-settings", {}});
    menu.open(content_, nullptr);
  }
  EXPECT_TRUE(child().isTerminated());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(MenuProcessTest, SaysThatTheProgramIsMissing) {
  launcher_.failStarts(Fault{Fault::Kind::absent, "ENOENT"});
  open();
  EXPECT_THAT(failures_, ElementsAre(std::string("O menu não pôde ser aberto. ") +
                                     Words::windowProgramMissing));
  launcher_.failStarts(std::nullopt);
  open();
  sayBytes(answerLine(Shown{}));
  sayBytes(answerLine(Chosen{1}));
  EXPECT_THAT(chosen_, ElementsAre(1));
}

TEST_F(MenuProcessTest, SaysThatTheProgramEndedBeforeItsMenuWasThere) {
  open();
  exit({.status = 0, .signal = 6});
  expectFailure(unopenedMenu);
}

TEST_F(MenuProcessTest, TakesASilentEndBeforeTheMenuForAFault) {
  open();
  child().exit();
  expectFailure(unopenedMenu);
}

TEST_F(MenuProcessTest, SaysThatTheMenuDied) {
  open();
  sayBytes(answerLine(Shown{}));
  exit({.status = 0, .signal = 11});
  expectFailure(brokenMenu);
}

TEST_F(MenuProcessTest, EndsAProgramThatNeverShowsItsMenu) {
  open();
  EXPECT_EQ(queue_->lastLeeway(), Seconds{1});
  time_.advance(MenuProcess::openLimit - Seconds{0.001});
  EXPECT_THAT(failures_, IsEmpty());
  EXPECT_FALSE(child().isTerminated());
  time_.advance(Seconds{0.001});
  expectFailure(hangingMenu);
}

TEST_F(MenuProcessTest, WaitsForTheUserAsLongAsItTakes) {
  open();
  sayBytes(answerLine(Shown{}));
  EXPECT_EQ(time_.pendingCount(), 0U);
  time_.advance(Seconds{86'400});
  sayBytes(answerLine(Chosen{1}));
  EXPECT_THAT(chosen_, ElementsAre(1));
}

TEST_F(MenuProcessTest, EndsAProgramThatSaysWhatItShouldNot) {
  const std::string shown = answerLine(Shown{});
  for (const std::string& bytes :
       {std::string("garbage\n"), answerLine(Chosen{1}), shown + shown, shown + "{}\n",
        shown + answerLine(Chosen{2}), std::string(agentReadLimit + 1, 'x'),
        shown + std::string(agentReadLimit, '\n')}) {
    open();
    sayBytes(bytes);
    expectFailure(brokenMenu);
    failures_.clear();
  }
}

TEST_F(MenuProcessTest, WaitsForTheRestOfHalfALine) {
  open();
  sayBytes(R"({"type":)");
  sayBytes("\"shown\"}\n{\"type\":\"chosen\"");
  EXPECT_THAT(failures_, IsEmpty());
  sayBytes(",\"id\":1}\n");
  EXPECT_THAT(chosen_, ElementsAre(1));
}

TEST_F(MenuProcessTest, SurvivesAProgramThatReadsNothing) {
  launcher_.onStart = [](test::ScriptedProcess& process) { process.closeInput(); };
  open();
  expectFailure(unopenedMenu);
}

}  // namespace
}  // namespace vantora
