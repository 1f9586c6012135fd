// SPDX-License-Identifier: MIT
#include "settings/popup/menu_program.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <string>
#include <vector>

#include "settings/agent/menu_process.hpp"
#include "settings/program_test.hpp"
#include "settings/toolkit/color_scheme.hpp"

namespace vantora {
namespace {

using namespace MenuProtocol;
using testing::ElementsAre;
using testing::IsEmpty;

const MenuContent menuContent{
    {{1, "Configurações…"}, {2, "Pausar & mais"}, {3, "Sair"}}, {100, 20}, {90, 10, 60, 22}, false};

// Within this process, without a screen.
class MenuProgramTest : public testing::Test {
 protected:
  ~MenuProgramTest() override { useDarkColors(false); }
  static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
  static void settle() {
    for (int round = 0; round < 10; ++round) {
      QApplication::processEvents();
    }
  }

  std::vector<std::string> lines_;
  std::vector<int> ends_;
  MenuProgram program_{{[this](std::string_view line) { lines_.emplace_back(line); },
                        [this](int status) { ends_.push_back(status); }}};
};

TEST_F(MenuProgramTest, ShowsTheEntriesBesideTheItem) {
  program_.receive(menuLine(menuContent));
  ASSERT_NE(openMenu(), nullptr);
  EXPECT_THAT(lines_, ElementsAre(answerLine(Shown{})));
  EXPECT_EQ(openMenu()->pos(), QPoint(100, 32));
  const QList<QAction*> actions = openMenu()->actions();
  ASSERT_EQ(actions.size(), 3);
  EXPECT_EQ(actions[0]->text(), QStringLiteral("Configurações…"));
  EXPECT_EQ(actions[1]->text(), QStringLiteral("Pausar && mais"));
  EXPECT_THAT(ends_, IsEmpty());
}

TEST_F(MenuProgramTest, IsAMenuToAssistiveTechnology) {
  program_.receive(menuLine(menuContent));
  ASSERT_NE(openMenu(), nullptr);
  QAccessibleInterface* menu = QAccessible::queryAccessibleInterface(openMenu());
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->role(), QAccessible::PopupMenu);
  ASSERT_EQ(menu->childCount(), 3);
  EXPECT_EQ(menu->child(2)->text(QAccessible::Name), QStringLiteral("Sair"));
}

TEST_F(MenuProgramTest, SendsTheChoiceThatTheKeyboardMadeAndEnds) {
  program_.receive(menuLine(menuContent));
  QTest::keyClick(openMenu(), Qt::Key_Down);
  QTest::keyClick(openMenu(), Qt::Key_Down);
  QTest::keyClick(openMenu(), Qt::Key_Return);
  settle();
  EXPECT_EQ(openMenu(), nullptr);
  EXPECT_THAT(lines_, ElementsAre(answerLine(Shown{}), answerLine(Chosen{2})));
  EXPECT_THAT(ends_, ElementsAre(0));
}

TEST_F(MenuProgramTest, SendsTheChoiceOfThePointer) {
  program_.receive(menuLine(menuContent));
  QMenu* menu = openMenu();
  const QPoint last = menu->actionGeometry(menu->actions()[2]).center();
  QTest::mouseMove(menu, last);
  QTest::mouseClick(menu, Qt::LeftButton, {}, last);
  settle();
  EXPECT_THAT(lines_, ElementsAre(answerLine(Shown{}), answerLine(Chosen{3})));
  EXPECT_THAT(ends_, ElementsAre(0));
}

TEST_F(MenuProgramTest, ChoosesNothingOnEscape) {
  program_.receive(menuLine(menuContent));
  QTest::keyClick(openMenu(), Qt::Key_Escape);
  settle();
  EXPECT_THAT(lines_, ElementsAre(answerLine(Shown{})));
  EXPECT_THAT(ends_, ElementsAre(0));
}

TEST_F(MenuProgramTest, ChoosesNothingByAClickElsewhere) {
  program_.receive(menuLine(menuContent));
  QTest::mouseClick(openMenu(), Qt::LeftButton, {}, QPoint(-40, -5));
  settle();
  EXPECT_EQ(openMenu(), nullptr);
  EXPECT_THAT(lines_, ElementsAre(answerLine(Shown{})));
  EXPECT_THAT(ends_, ElementsAre(0));
}

TEST_F(MenuProgramTest, IsDarkOnADarkDesktop) {
  MenuContent dark = menuContent;
  program_.receive(menuLine(menuContent));
  EXPECT_FALSE(looksDark());
  MenuProgram another({[](std::string_view) {}, [](int) {}});
  dark.isDark = true;
  another.receive(menuLine(dark));
  EXPECT_TRUE(looksDark());
}

TEST_F(MenuProgramTest, EndsWithAFaultOverALineThatIsNoMenu) {
  program_.receive("{\"type\":");
  EXPECT_THAT(ends_, IsEmpty());
  program_.receive("\"raise\"}\n");
  EXPECT_THAT(ends_, ElementsAre(1));
  EXPECT_EQ(openMenu(), nullptr);
}

TEST_F(MenuProgramTest, EndsWithAFaultOverASecondMenu) {
  program_.receive(menuLine(menuContent) + menuLine(menuContent));
  EXPECT_THAT(ends_, ElementsAre(1));
}

TEST_F(MenuProgramTest, EndsWithAFaultOverALineWithoutAnEnd) {
  program_.receive(std::string(menuReadLimit + 1, ' '));
  EXPECT_THAT(ends_, ElementsAre(1));
}

using MenuProgramProcess = test::ProgramTest;

TEST_F(MenuProgramProcess, ShowsItsMenuAndEndsWithItsInput) {
  const auto child = startWith(argument);
  ASSERT_TRUE(child->write(menuLine(menuContent)));
  runUntilLine();
  EXPECT_EQ(output_, answerLine(Shown{}));
  child->closeInput();
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
  EXPECT_EQ(output_, answerLine(Shown{}));
}

TEST_F(MenuProgramProcess, EndsWithItsInputBeforeItEverShowedAnything) {
  const auto child = startWith(argument);
  child->closeInput();
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
}

TEST_F(MenuProgramProcess, EndsWithAFaultOverALineThatIsNoMenu) {
  const auto child = startWith(argument);
  ASSERT_TRUE(child->write("garbage\n"));
  runUntilExit();
  EXPECT_EQ(exit_, (ChildExit{1, 0}));
}

TEST_F(MenuProgramProcess, OpensForTheAgentOneAtATimeAndLeavesNothingBehind) {
  const test::ProcessCensus before = test::ProcessCensus::take();
  std::vector<std::string> failures;
  {
    MenuProcess menu({processes_.queue(), processes_.launcher(), VANTORA_SETTINGS, {}});
    menu.onFailure = [&](const std::string& message) { failures.push_back(message); };
    for (int round = 0; round < 3; ++round) {
      menu.open(menuContent, nullptr);
    }
    menu.close();
    menu.open(menuContent, nullptr);
  }
  processes_.runUntilBackTo(before);
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(MenuProgramProcess, SaysThatThereIsNoScreen) {
  MenuProcess menu({processes_.queue(),
                    processes_.launcher(),
                    VANTORA_SETTINGS,
                    {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", ":nowhere"}}});
  std::vector<std::string> failures;
  menu.onFailure = [&](const std::string& message) { failures.push_back(message); };
  menu.open(menuContent, nullptr);
  processes_.runUntil([&] { return !failures.empty(); });
  EXPECT_THAT(failures, ElementsAre("O menu não pôde ser aberto."));
}

}  // namespace
}  // namespace vantora
