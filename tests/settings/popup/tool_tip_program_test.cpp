// SPDX-License-Identifier: MIT
#include "settings/popup/tool_tip_program.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QToolTip>
#include <string>
#include <vector>

#include "settings/agent/tool_tip_process.hpp"
#include "settings/program_test.hpp"
#include "settings/toolkit/color_scheme.hpp"

namespace vantora {
namespace {

using namespace MenuProtocol;
using testing::ElementsAre;
using testing::IsEmpty;

const ToolTipContent toolTipContent{"CPU: <b>12%</b>\nRede: 0,1M", {100, 20}, false};

class ToolTipProgramTest : public testing::Test {
 protected:
  ~ToolTipProgramTest() override {
    QToolTip::hideText();
    QApplication::processEvents();
    useDarkColors(false);
  }
  std::vector<int> ends_;
  ToolTipProgram program_{[this](int status) { ends_.push_back(status); }};
};

TEST_F(ToolTipProgramTest, ShowsTheTextAsItIs) {
  program_.receive(toolTipLine(toolTipContent));
  ASSERT_TRUE(QToolTip::isVisible());
  EXPECT_EQ(
      QToolTip::text(),
      QStringLiteral("<p style='white-space:pre'>CPU: &lt;b&gt;12%&lt;/b&gt;\nRede: 0,1M</p>"));
  EXPECT_THAT(ends_, IsEmpty());
}

TEST_F(ToolTipProgramTest, IsDarkOnADarkDesktop) {
  ToolTipContent dark = toolTipContent;
  dark.isDark = true;
  program_.receive(toolTipLine(dark));
  const QPalette palette = QToolTip::palette();
  EXPECT_LT(palette.color(QPalette::ToolTipBase).lightness(),
            palette.color(QPalette::ToolTipText).lightness());
}

TEST_F(ToolTipProgramTest, EndsWithAFaultOverALineThatIsNoToolTip) {
  program_.receive("{\"type\":\"menu\"}\n");
  EXPECT_THAT(ends_, ElementsAre(1));
}

TEST_F(ToolTipProgramTest, EndsWithAFaultOverASecondOne) {
  program_.receive(toolTipLine(toolTipContent) + toolTipLine(toolTipContent));
  EXPECT_THAT(ends_, ElementsAre(1));
}

TEST_F(ToolTipProgramTest, EndsWithAFaultOverALineWithoutAnEnd) {
  program_.receive(std::string(menuReadLimit + 1, ' '));
  EXPECT_THAT(ends_, ElementsAre(1));
}

using ToolTipProgramProcess = test::ProgramTest;

TEST_F(ToolTipProgramProcess, EndsWithItsInput) {
  const auto child = startWith(toolTipArgument);
  ASSERT_TRUE(child->write(toolTipLine(toolTipContent)));
  child->closeInput();
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
}

TEST_F(ToolTipProgramProcess, EndsWithAFaultOverALineThatIsNoToolTip) {
  const auto child = startWith(toolTipArgument);
  ASSERT_TRUE(child->write("garbage\n"));
  runUntilExit();
  EXPECT_EQ(exit_, (ChildExit{1, 0}));
}

TEST_F(ToolTipProgramProcess, ComesAndGoesForTheAgentAndLeavesNothingBehind) {
  const test::ProcessCensus before = test::ProcessCensus::take();
  std::vector<std::string> failures;
  {
    ToolTipProcess toolTip({processes_.queue(), processes_.launcher(), VANTORA_SETTINGS, {}});
    toolTip.onFailure = [&](const std::string& message) { failures.push_back(message); };
    toolTip.show(toolTipContent);
    toolTip.hide();
    toolTip.show(toolTipContent);
    toolTip.show(toolTipContent);
  }
  processes_.runUntilBackTo(before);
  EXPECT_THAT(failures, IsEmpty());
}

}  // namespace
}  // namespace vantora
