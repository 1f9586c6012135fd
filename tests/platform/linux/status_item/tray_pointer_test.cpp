// SPDX-License-Identifier: MIT
//
// What clicks and a resting pointer do on the item in a tray.
#include "platform/linux/status_item/tray_pointer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/status_item/status_item_tray_stage.hpp"

namespace vantora {
namespace {

using test::ScriptedPortal;
using testing::ElementsAre;
using testing::IsEmpty;

using StatusItemTrayTest = test::StatusItemTrayStage;

TEST_F(StatusItemTrayTest, OpensTheSettingsWithTheTimeOfTheClick) {
  startInTray();
  click(1, 777);
  EXPECT_TRUE(untilDid({"open:vantora_TIME777"}));
  click(2, 888);
  EXPECT_TRUE(untilDid({"open:vantora_TIME777", "open:vantora_TIME888"}));
  EXPECT_THAT(menu_.opened, IsEmpty());
  EXPECT_EQ(menu_.closings, 2) << "a menu that is open goes";
}

TEST_F(StatusItemTrayTest, OpensTheSameMenuAsOnTheBus) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  const MenuContent& content = menu_.opened.front();
  EXPECT_THAT(content.entries, ElementsAre(MenuEntry{1, "Configurações…"}, MenuEntry{2, "Pausar"},
                                           MenuEntry{3, "Sair"}));
  const auto [x, y] = tray_->place();
  EXPECT_EQ(content.item, (ScreenArea{x, y, 66, 24}));
  EXPECT_EQ(content.pointer, (ScreenPoint{x + 10, y + 8}));
  EXPECT_FALSE(content.isDark);
  EXPECT_THAT(user_.did, IsEmpty());
}

TEST_F(StatusItemTrayTest, DoesWhatIsChosen) {
  startInTray();
  click(3, 999);
  ASSERT_TRUE(untilMenu(1));
  menu_.choose(1);
  EXPECT_TRUE(untilDid({"open:vantora_TIME999"}));
  click(3);
  ASSERT_TRUE(untilMenu(2));
  menu_.choose(2);
  EXPECT_TRUE(untilDid({"open:vantora_TIME999", "pause"}));
  click(3);
  ASSERT_TRUE(untilMenu(3));
  EXPECT_EQ(menu_.opened.back().entries[1].label, "Retomar");
  menu_.choose(3);
  EXPECT_TRUE(untilDid({"open:vantora_TIME999", "pause", "quit"}));
}

TEST_F(StatusItemTrayTest, DoesNotPauseTwice) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  user_.isPaused = true;  // by the settings window, while the menu says "Pausar"
  menu_.choose(2);
  time_.runPosted();
  EXPECT_THAT(user_.did, IsEmpty());
}

TEST_F(StatusItemTrayTest, IgnoresAnEntryThatTheMenuDoesNotHave) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  menu_.choose(42);
  time_.runPosted();
  EXPECT_THAT(user_.did, IsEmpty());
}

TEST_F(StatusItemTrayTest, OpensADarkMenuOnADarkDesktop) {
  portal_ = std::make_unique<ScriptedPortal>(*portalConnection_, 1);
  startInTray();
  ASSERT_TRUE(until([this] {
    click(3);
    return !menu_.opened.empty() && menu_.opened.back().isDark;
  }));
}

TEST_F(StatusItemTrayTest, ShowsTheReadingsWhereThePointerRests) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{0.499});
  EXPECT_THAT(toolTip_.shown, IsEmpty());
  time_.advance(Seconds{0.001});
  const auto [x, y] = tray_->place();
  EXPECT_THAT(toolTip_.shown,
              ElementsAre(ToolTipContent{"CPU: 12%\nRede: 0,1M", {x + 10, y + 8}, false}));
  const int before = toolTip_.hidings;
  tray_->leave();
  EXPECT_TRUE(until([&] { return toolTip_.hidings == before + 1; }));
}

TEST_F(StatusItemTrayTest, ShowsNoToolTipToAPointerThatPassesBy) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  tray_->leave();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 0; }));
  time_.advance(Seconds{60});
  EXPECT_THAT(toolTip_.shown, IsEmpty());
}

TEST_F(StatusItemTrayTest, ShowsNoToolTipOverItsMenu) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  const int before = toolTip_.hidings;
  click(3);
  ASSERT_TRUE(untilMenu(1));
  EXPECT_EQ(toolTip_.hidings, before + 1);
  time_.advance(Seconds{60});
  EXPECT_THAT(toolTip_.shown, IsEmpty());
  tray_->leave(XCB_NOTIFY_MODE_GRAB);
  settle();
  EXPECT_EQ(menu_.closings, 0) << "the menu stays";
}

TEST_F(StatusItemTrayTest, TakesItsToolTipAwayWithTheTray) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{0.5});
  ASSERT_EQ(toolTip_.shown.size(), 1U);
  const int before = toolTip_.hidings;
  tray_.reset();
  EXPECT_TRUE(until([&] { return toolTip_.hidings > before; }));
}

TEST_F(StatusItemTrayTest, TakesMenuAndToolTipWithIt) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  const int before = toolTip_.hidings;
  item_.reset();
  EXPECT_EQ(menu_.closings, 1);
  EXPECT_EQ(toolTip_.hidings, before + 1);
  EXPECT_TRUE(until([this] { return !tray_->isThere(); }));
}

}  // namespace
}  // namespace vantora
