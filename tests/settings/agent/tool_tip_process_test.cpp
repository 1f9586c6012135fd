// SPDX-License-Identifier: MIT
#include "settings/agent/tool_tip_process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/agent/child_test.hpp"

namespace vantora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* failure = "A dica com as leituras não pôde ser mostrada.";

class ToolTipProcessTest : public test::ChildTest {
 protected:
  ToolTipProcessTest() {
    toolTip_.onFailure = [this](const std::string& message) { failures_.push_back(message); };
  }
  void show() {
    toolTip_.show(content_);
    time_.runPosted();
  }

  const ToolTipContent content_{"CPU: 12%\nRede: 0,1M", {850, 14}, true};
  ToolTipProcess toolTip_{{*queue_, launcher_, "/opt/vantora-settings", {{"A", "b"}}}};
};

TEST_F(ToolTipProcessTest, SendsTheTextToTheProgram) {
  show();
  EXPECT_EQ(child().options().executable, "/opt/vantora-settings");
  EXPECT_THAT(child().options().arguments, ElementsAre("--tool-tip"));
  EXPECT_EQ(child().options().environmentChanges.at("A"), "b");
  const auto lines = child().takeInputLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(MenuProtocol::readToolTipLine(lines[0]), content_);
}

TEST_F(ToolTipProcessTest, TakesTheToolTipAway) {
  toolTip_.hide();
  show();
  toolTip_.hide();
  toolTip_.hide();
  EXPECT_TRUE(child().isTerminated());
  time_.runPosted();
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_THAT(failures_, IsEmpty());
}

TEST_F(ToolTipProcessTest, ShowsOneAtATime) {
  show();
  const auto first = launcher_.started().back();
  show();
  EXPECT_TRUE(first->isTerminated());
  EXPECT_EQ(launcher_.started().size(), 2U);
  EXPECT_FALSE(child().isTerminated());
}

TEST_F(ToolTipProcessTest, IsContentWithOneThatEndsByItself) {
  show();
  exit({});
  EXPECT_THAT(failures_, IsEmpty());
  EXPECT_TRUE(child().isTerminated()) << "with what it may have left behind";
  show();
  EXPECT_EQ(launcher_.started().size(), 2U);
}

TEST_F(ToolTipProcessTest, DropsWhatTheProgramSays) {
  show();
  for (int round = 0; round < 100; ++round) {
    child().output(std::string(100'000, 'x'));
  }
  time_.runPosted();
  EXPECT_THAT(failures_, IsEmpty());
}

TEST_F(ToolTipProcessTest, SaysOnceThatItCannotBeShown) {
  launcher_.failStarts(Fault{Fault::Kind::absent, "ENOENT"});
  show();
  show();
  EXPECT_THAT(failures_, ElementsAre(failure));
}

TEST_F(ToolTipProcessTest, SaysItAgainOnlyAfterOneThatWasShown) {
  show();
  exit({.status = 0, .signal = 6});
  EXPECT_THAT(failures_, ElementsAre(failure));
  show();
  exit({.status = 1, .signal = 0});
  EXPECT_EQ(failures_.size(), 1U);
  show();
  exit({});
  show();
  exit({.status = 0, .signal = 11});
  EXPECT_EQ(failures_.size(), 2U);
}

TEST_F(ToolTipProcessTest, SurvivesAProgramThatReadsNothing) {
  launcher_.onStart = [](test::ScriptedProcess& process) { process.closeInput(); };
  show();
  EXPECT_THAT(failures_, ElementsAre(failure));
  EXPECT_TRUE(child().isTerminated());
}

}  // namespace
}  // namespace vantora
