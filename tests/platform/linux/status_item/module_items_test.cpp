// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/module_items.hpp"

#include <gtest/gtest.h>

#include "platform/linux/status_item/example_presentation.hpp"
#include "platform/linux/status_item/status_item_stage.hpp"
#include "status/rasterise.hpp"
#include "support/linux/bus_call.hpp"

namespace vantora {
namespace {

using test::examplePresentation;
using test::ItemProperties;
using test::line;

class ModuleItemsTest : public test::StatusItemStage {
 protected:
  // The two modules of the example, which have identities.
  static StatusPresentation twoModules(const std::string& first,
                                       const std::string& second = "0,1M") {
    StatusPresentation shown = examplePresentation(first, second);
    shown.modules[0].id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000001");
    shown.modules[1].id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000002");
    return shown;
  }

  static StatusPresentation oneModule(const std::string& first) {
    StatusPresentation shown = twoModules(first);
    shown.modules.pop_back();
    shown.toolTip = "CPU: " + first;
    return shown;
  }

  void startRow(const std::string& panel) {
    startPanel(panel);
    startItem();
    item_->show(twoModules("12%"));
    ASSERT_TRUE(untilRegistered(2));
    ASSERT_TRUE(untilShown());
  }
};

TEST_F(ModuleItemsTest, RegisterFromTheLeftWhereAPanelPutsTheNextToTheRight) {
  for (const char* panel : {"lxqt-panel", "kded5"}) {
    panel_.reset();
    item_.reset();
    startRow(panel);
    EXPECT_TRUE(panel_->items().front().ends_with("/StatusNotifierItem/1")) << panel;
    EXPECT_TRUE(panel_->items().back().ends_with("/StatusNotifierItem/2")) << panel;
  }
}

TEST_F(ModuleItemsTest, RegisterFromTheRightWhereAPanelPutsTheNextToTheLeft) {
  startRow("swaybar");
  EXPECT_TRUE(panel_->items().front().ends_with("/StatusNotifierItem/2"));
  EXPECT_TRUE(panel_->items().back().ends_with("/StatusNotifierItem/1"));
}

TEST_F(ModuleItemsTest, AreOneItemWhereAPanelDoesNotKeepThemInOrder) {
  startPanel("tint2");
  startItem();
  item_->show(twoModules("12%"));
  ASSERT_TRUE(untilRegistered());
  ask();
  EXPECT_EQ(panel_->items().size(), 1U);
}

TEST_F(ModuleItemsTest, HaveNamesAndToolTipsOfTheirOwn) {
  startRow("lxqt-panel");
  const ItemProperties first = ask(1);
  const ItemProperties second = ask(0);
  EXPECT_EQ(first.texts.at("Id"), "vantora-AAAAAAAA-0000-4000-8000-000000000001");
  EXPECT_EQ(second.texts.at("Id"), "vantora-AAAAAAAA-0000-4000-8000-000000000002");
  EXPECT_EQ(first.texts.at("Title"), "Vantora 1: CPU · uso total, CPU · uso total");
  EXPECT_EQ(second.texts.at("Title"), "Vantora 2: CPU · uso total");
  EXPECT_EQ(first.toolTipTitle, "CPU · uso total: 12%\nCPU · uso total: 48");
  EXPECT_EQ(second.toolTipTitle, "CPU · uso total: 0,1M");
  EXPECT_EQ(second.texts.at("Status"), "Active");
}

TEST_F(ModuleItemsTest, ShowEachItsModuleInSquares) {
  startRow("lxqt-panel");
  const ItemProperties second = ask(0);
  ASSERT_EQ(second.pixmaps.size(), 6U);
  EXPECT_EQ(second.pixmaps[1].bytes, squareOnPlate({{}, line("0,1M")}));
}

TEST_F(ModuleItemsTest, AnnounceOnlyTheModuleThatChanged) {
  startRow("lxqt-panel");
  item_->show(twoModules("13%"));
  item_->show(twoModules("13%"));
  ask();
  EXPECT_EQ(panel_->signals(),
            (Strings{"NewIcon of /StatusNotifierItem/1", "NewToolTip of /StatusNotifierItem/1"}));
}

TEST_F(ModuleItemsTest, KeepToolTipsFromAPanelThatShowsNone) {
  startRow("swaybar");
  EXPECT_EQ(ask().toolTipTitle, "");
  item_->show(twoModules("13%"));
  ask();
  EXPECT_EQ(panel_->signals(), Strings{"NewIcon of /StatusNotifierItem/1"});
}

TEST_F(ModuleItemsTest, AreWithdrawnAndRegisteredAnewWhenAModuleComesOrGoes) {
  startRow("lxqt-panel");
  item_->show(oneModule("12%"));
  ASSERT_TRUE(untilRegistered(3));
  EXPECT_EQ(ask(0).texts.at("Id"), "vantora-AAAAAAAA-0000-4000-8000-000000000001");
  EXPECT_TRUE(ask(1).texts.empty()) << "gone with its connection";
  EXPECT_TRUE(ask(2).texts.empty());
  item_->show(twoModules("12%"));
  ASSERT_TRUE(untilRegistered(5));
}

TEST_F(ModuleItemsTest, StayWhenOnlyTextsChange) {
  startRow("lxqt-panel");
  item_->show(twoModules("9%", "9,9M"));
  ask();
  EXPECT_EQ(panel_->items().size(), 2U);
}

TEST_F(ModuleItemsTest, ShowTheMarkWhereThereIsNoModule) {
  startRow("lxqt-panel");
  StatusPresentation empty;
  empty.toolTip = "Vantora: sem módulos ativos.";
  item_->show(empty);
  ASSERT_TRUE(untilRegistered(3));
  const ItemProperties mark = ask();
  EXPECT_EQ(mark.texts.at("Title"), "Vantora");
  EXPECT_EQ(mark.toolTipTitle, "Vantora: sem módulos ativos.");
}

TEST_F(ModuleItemsTest, HaveTheMenuAndTheClicksOfOneItem) {
  int opened = 0;
  startPanel("lxqt-panel");
  startItem();
  item_->setActions({.openSettings = [&](std::string_view) { ++opened; },
                     .togglePause = {},
                     .quit = {},
                     .isPaused = {}});
  item_->show(twoModules("12%"));
  ASSERT_TRUE(untilRegistered(2));
  EXPECT_EQ(ask(0).texts.at("Menu"), "/MenuBar");
  EXPECT_EQ(ask(1).texts.at("Menu"), "/MenuBar");
  const std::string& left = panel_->items().front();
  const std::string sender = left.substr(0, left.find('/'));
  test::callAndWait(loop_, panelConnection_->bus(),
                    {sender, "/StatusNotifierItem/1", "org.kde.StatusNotifierItem"}, "Activate",
                    "ii", 10, 20);
  time_.runPosted();
  EXPECT_EQ(opened, 1);
  test::callAndWait(loop_, panelConnection_->bus(), {sender, "/MenuBar", "com.canonical.dbusmenu"},
                    "Event", "isvu", 1, "clicked", "i", 0, 0U);
  time_.runPosted();
  EXPECT_EQ(opened, 2);
}

TEST_F(ModuleItemsTest, RegisterAgainWithAPanelThatRestarts) {
  startRow("swaybar");
  panel_.reset();
  startPanel("swaybar");
  ASSERT_TRUE(untilRegistered(2));
  panel_.reset();
  startPanel("waybar");
  ASSERT_TRUE(untilRegistered(1));
  EXPECT_EQ(ask().pixmaps.front().width, 132) << "another panel, another form";
}

TEST_F(ModuleItemsTest, RegisterLaterWithAPanelThatIsNotReady) {
  startPanel("lxqt-panel", {.hasHost = true, .refusals = 2});
  startItem();
  item_->show(twoModules("12%"));
  ASSERT_TRUE(untilShown());
  ASSERT_TRUE(until([this] {
    time_.advance(Seconds{0.5});
    return panel_->items().size() == 2;
  }));
}

TEST_F(ModuleItemsTest, AreToldOfAnotherInk) {
  portal_ = std::make_unique<test::ScriptedPortal>(*portalConnection_, 2);
  startRow("lxqt-panel");
  ASSERT_TRUE(until([this] { return portalConnection_->bus() != nullptr; }));
  panel_->forgetSignals();
  portal_->change(1);
  ASSERT_TRUE(until([this] { return panel_->signals().size() == 2; }));
  EXPECT_EQ(panel_->signals(),
            (Strings{"NewIcon of /StatusNotifierItem/1", "NewIcon of /StatusNotifierItem/2"}));
}

}  // namespace
}  // namespace vantora
