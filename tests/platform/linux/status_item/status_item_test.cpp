// SPDX-License-Identifier: MIT
//
// The item on a bus of its own, with a panel that the test plays.
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "platform/linux/status_item/example_presentation.hpp"
#include "platform/linux/status_item/status_item_stage.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

using test::examplePresentation;
using test::ItemProperties;
using test::line;
using test::ScriptedPanel;
using test::ScriptedPortal;

class LinuxStatusItemTest : public test::StatusItemStage {
 protected:
  // What the panel has been given is given again, and not drawn again.
  void askTwice() {
    const ItemProperties first = ask();
    engine_.drawnLines = 0;
    const ItemProperties second = ask();
    EXPECT_EQ(engine_.drawnLines, 0);
    ASSERT_EQ(second.pixmaps.size(), first.pixmaps.size());
    EXPECT_EQ(second.pixmaps.back().bytes, first.pixmaps.back().bytes);
  }
};

TEST_F(LinuxStatusItemTest, RegistersUnderItsOwnNameWithAPanelThatIsThere) {
  startPanel("waybar");
  ASSERT_TRUE(until([this] { return panelConnection_->bus() != nullptr; }));
  startItem();
  ASSERT_TRUE(untilRegistered());
  EXPECT_EQ(panel_->items().front(),
            "org.kde.StatusNotifierItem-" + std::to_string(::getpid()) + "-1");
  EXPECT_TRUE(untilShown());
}

TEST_F(LinuxStatusItemTest, SaysWhatItIs) {
  ASSERT_TRUE(showOn("waybar"));
  const ItemProperties properties = ask();
  EXPECT_EQ(properties.texts.at("Category"), "SystemServices");
  EXPECT_EQ(properties.texts.at("Id"), "vantora");
  EXPECT_EQ(properties.texts.at("Title"), "Vantora");
  EXPECT_EQ(properties.texts.at("Status"), "Active");
  EXPECT_EQ(properties.texts.at("IconName"), "");
  EXPECT_EQ(properties.texts.at("IconAccessibleDesc"), "CPU: 12%. Rede: 0,1M");
  EXPECT_EQ(properties.toolTipTitle, "CPU: 12%\nRede: 0,1M");
  EXPECT_EQ(properties.toolTipDescription, "");
  EXPECT_EQ(properties.numbers.at("ItemIsMenu"), 0);
  // LXQt logs an error at every change for one of these that is missing.
  for (const char* name : {"OverlayIconPixmap", "AttentionIconPixmap"}) {
    ASSERT_TRUE(properties.others.contains(name)) << name;
    EXPECT_TRUE(properties.others.at(name).empty()) << name;
  }
  for (const char* name :
       {"IconThemePath", "AttentionMovieName", "OverlayIconName", "AttentionIconName"}) {
    ASSERT_TRUE(properties.texts.contains(name)) << name;
    EXPECT_EQ(properties.texts.at(name), "") << name;
  }
  EXPECT_FALSE(properties.texts.contains("Menu")) << "none before the item has actions";
}

TEST_F(LinuxStatusItemTest, ReportsThePanelByItsProgramAndTheInkByTheDesktop) {
  startPanel("ironbar");
  portal_ = std::make_unique<ScriptedPortal>(*portalConnection_, 1);
  startItem();
  EXPECT_EQ(item_->report().form, "nenhuma") << "the bus has not answered yet";
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return item_->report().ink == "clara"; }));
  const StatusItemReport report = item_->report();
  EXPECT_EQ(report.panel, "desconhecido");
  EXPECT_EQ(report.program, "ironbar");
  EXPECT_EQ(report.form, "quadrado com um módulo");
  panel_.reset();
  EXPECT_TRUE(until([this] { return item_->report().program.empty(); }));
}

TEST_F(LinuxStatusItemTest, GivesWaybarTheWholePictureOnceForItDrawsTheLargestAlone) {
  ASSERT_TRUE(showOn("waybar"));
  const ItemProperties properties = ask();
  ASSERT_EQ(properties.pixmaps.size(), 1U);
  EXPECT_EQ(properties.pixmaps[0].width, 132);
  EXPECT_EQ(properties.pixmaps[0].height, 44);
  StatusImage image = examplePresentation("12%").image;
  image.width += 6;
  for (PlacedText& text : image.texts) {
    text.x += 3;
  }
  const AlphaBitmap expected = rasterise(image, engine_, 2);
  EXPECT_EQ(properties.pixmaps[0].bytes, onPlate(expected, 10));
}

TEST_F(LinuxStatusItemTest, GivesMateTheWholePictureAndNoLabel) {
  ASSERT_TRUE(showOn("notification-ar"));
  const ItemProperties properties = ask();
  ASSERT_GE(properties.pixmaps.size(), 2U);
  EXPECT_EQ(properties.pixmaps[0].width, 66);
  EXPECT_EQ(properties.pixmaps[0].height, 22);
  EXPECT_EQ(properties.pixmaps[1].width, 132);
  EXPECT_EQ(properties.pixmaps[1].height, 44);
  EXPECT_FALSE(properties.texts.contains("XAyatanaLabel"));
}

TEST_F(LinuxStatusItemTest, GivesMateThePictureAtTheHeightsThatItWouldStretchToOtherwise) {
  ASSERT_TRUE(showOn("mate-panel"));
  const ItemProperties properties = ask();
  std::vector<int> heights;
  for (const test::Pixmap& pixmap : properties.pixmaps) {
    heights.push_back(pixmap.height);
    EXPECT_EQ(pixmap.width, 66 * (pixmap.height / 22 == 2 ? 2 : 1));
  }
  EXPECT_EQ(heights, (std::vector{22, 44, 24, 25, 26, 28, 30, 32}));
  // The same ink with more of the plate around it.
  const ImageFrame frame{.width = 66, .height = 25, .left = 3, .bottom = 1};
  const AlphaBitmap expected = rasterise(examplePresentation("12%").image, frame, engine_, 1);
  EXPECT_EQ(properties.pixmaps[3].bytes, onPlate(expected, 5));
}

TEST_F(LinuxStatusItemTest, GivesGnomeALabelBesideASquareMark) {
  ASSERT_TRUE(showOn("gnome-shell"));
  const ItemProperties properties = ask();
  EXPECT_EQ(properties.texts.at("XAyatanaLabel"), "12% 48 · 0,1M");
  ASSERT_FALSE(properties.pixmaps.empty());
  for (const test::Pixmap& pixmap : properties.pixmaps) {
    EXPECT_EQ(pixmap.width, pixmap.height);
  }
  item_->show(examplePresentation("13%"));
  ask();
  EXPECT_EQ(panel_->signals(), Strings{"XAyatanaNewLabel:13% 48 · 0,1M"});
}

TEST_F(LinuxStatusItemTest, GivesOtherPanelsASquareOfTheFirstModule) {
  ASSERT_TRUE(showOn("tint2"));
  const ItemProperties properties = ask();
  ASSERT_EQ(properties.pixmaps.size(), 6U);
  EXPECT_EQ(properties.pixmaps[1].width, 22);
  EXPECT_EQ(properties.pixmaps[1].height, 22);
  EXPECT_EQ(properties.pixmaps[1].bytes, squareOnPlate({line("12%"), line("48")}));

  item_->show(examplePresentation("12%", "9,9M"));
  ask();
  EXPECT_EQ(panel_->signals(), Strings{"NewToolTip"}) << "the first module has not changed";
}

TEST_F(LinuxStatusItemTest, ShowsAnotherModuleInTheSquareWhileTheFirstHasNoReading) {
  startPanel("tint2");
  startItem();
  item_->show(examplePresentation("—", "0,1M", "—"));
  ASSERT_TRUE(untilRegistered());
  EXPECT_EQ(ask().pixmaps[1].bytes, squareOnPlate({{}, line("0,1M")}));

  item_->show(examplePresentation("12%"));
  ask();
  EXPECT_EQ(panel_->signals(), (Strings{"NewIcon", "NewToolTip"}));
}

TEST_F(LinuxStatusItemTest, ShowsTheUsersModuleInTheSquare) {
  startPanel("tint2");
  startItem();
  StatusPresentation shown = examplePresentation("12%");
  shown.modules[0].id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000001");
  shown.modules[1].id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000002");
  item_->show(shown);
  ASSERT_TRUE(untilRegistered());
  ask();
  panel_->forgetSignals();
  item_->setSquareModule(shown.modules[1].id);
  EXPECT_EQ(ask().pixmaps[1].bytes, squareOnPlate({{}, line("0,1M")}));
  EXPECT_EQ(panel_->signals(), Strings{"NewIcon"});
}

TEST_F(LinuxStatusItemTest, SaysWhetherThePanelKeepsOneSquare) {
  std::vector<bool> said;
  startPanel("tint2");
  startItem();
  item_->show(examplePresentation("12%"));
  item_->setSquareListener([&](bool keepsSquare) { said.push_back(keepsSquare); });
  ASSERT_TRUE(untilShown());
  EXPECT_EQ(said, (std::vector{false, true}));
  for (const char* panel : {"waybar", "lxqt-panel"}) {
    panel_.reset();
    startPanel(panel);
    ASSERT_TRUE(until([this] { return !panel_->items().empty(); }));
    EXPECT_FALSE(said.back()) << panel;
  }
}

TEST_F(LinuxStatusItemTest, LeavesTheDescriptionOutWhereItWouldRepeatTheToolTip) {
  ASSERT_TRUE(showOn("panel-6-systray"));
  const ItemProperties properties = ask();
  EXPECT_EQ(properties.texts.at("IconAccessibleDesc"), "");
  EXPECT_EQ(properties.toolTipTitle, "CPU: 12%\nRede: 0,1M");
}

TEST_F(LinuxStatusItemTest, AnnouncesOnlyWhatHasChanged) {
  ASSERT_TRUE(showOn("waybar"));
  ASSERT_TRUE(untilShown());
  ask();
  EXPECT_EQ(panel_->signals(), Strings{}) << "who registers is asked anyway";

  item_->show(examplePresentation("12%"));
  ask();
  EXPECT_EQ(panel_->signals(), Strings{});

  item_->show(examplePresentation("13%"));
  ask();
  EXPECT_EQ(panel_->signals(), (Strings{"NewIcon", "NewToolTip"}));
  panel_->forgetSignals();

  StatusPresentation wider = examplePresentation("13%");
  wider.image.width += 8;
  item_->show(wider);
  ask();
  EXPECT_EQ(panel_->signals(), Strings{"NewIcon"});
  panel_->forgetSignals();

  wider.accessibilityText += ". Claude: conectado";
  wider.toolTip += "\nClaude: conectado";
  item_->show(wider);
  ask();
  EXPECT_EQ(panel_->signals(), Strings{"NewToolTip"});
}

TEST_F(LinuxStatusItemTest, DrawsNothingBeforeAPanelAsks) {
  ASSERT_TRUE(showOn("waybar"));
  item_->show(examplePresentation("13%"));
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  EXPECT_EQ(engine_.drawnLines, 0);
  ask();
  EXPECT_EQ(engine_.drawnLines, 3);
}

TEST_F(LinuxStatusItemTest, DrawsNothingTwiceForAPanelThatAsksAgain) {
  ASSERT_TRUE(showOn("waybar"));
  askTwice();
}

TEST_F(LinuxStatusItemTest, DrawsNoSquareTwiceForAPanelThatAsksAgain) {
  ASSERT_TRUE(showOn("tint2"));
  askTwice();
}

TEST_F(LinuxStatusItemTest, RegistersWithAPanelThatComesLate) {
  startItem();
  item_->show(examplePresentation("12%"));
  ASSERT_TRUE(until([this] { return itemConnection_->bus() != nullptr; }));
  startPanel("waybar");
  ASSERT_TRUE(untilRegistered());
  EXPECT_EQ(ask().pixmaps.front().width, 132);
}

TEST_F(LinuxStatusItemTest, RegistersAgainWithAPanelThatRestarts) {
  ASSERT_TRUE(showOn("waybar"));
  panel_.reset();
  startPanel("tint2");
  ASSERT_TRUE(untilRegistered());
  EXPECT_EQ(ask().pixmaps.front().width, 16) << "another panel, another form";
}

TEST_F(LinuxStatusItemTest, RegistersAgainAfterTheBusDiedAndCameBack) {
  ASSERT_TRUE(showOn("waybar"));
  ASSERT_TRUE(untilShown());
  bus_.stop();
  ASSERT_TRUE(until([this] { return situations_.back() == StatusItemSituation::noBus; }));
  item_->show(examplePresentation("14%"));
  bus_.start();
  time_.advance(Seconds{2});
  ASSERT_TRUE(untilRegistered(2));
  ASSERT_TRUE(untilShown());
  EXPECT_EQ(ask().toolTipTitle, "CPU: 14%\nRede: 0,1M");
}

TEST_F(LinuxStatusItemTest, SaysOnceAndNotTooSoonThatThereIsNoPanel) {
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{4.999});
  EXPECT_EQ(situations_, Situations{});
  time_.advance(Seconds{0.001});
  EXPECT_EQ(situations_, Situations{StatusItemSituation::noHost});
  time_.advance(Seconds{600});
  EXPECT_EQ(situations_.size(), 1U);
  startPanel("waybar");
  ASSERT_TRUE(untilShown());
}

TEST_F(LinuxStatusItemTest, DoesNotTakeAWatcherAloneForAPanel) {
  startPanel("watcher", {.hasHost = false});
  startItem();
  ASSERT_TRUE(untilRegistered());
  ask();
  time_.advance(Seconds{5});
  EXPECT_EQ(situations_, Situations{StatusItemSituation::noHost});
  panel_->setHasHost(true);
  ASSERT_TRUE(untilShown());
  panel_->setHasHost(false);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  EXPECT_EQ(situations_.back(), StatusItemSituation::noHost);
}

TEST_F(LinuxStatusItemTest, SaysThatThereIsNoBus) {
  bus_.stop();
  startItem();
  EXPECT_EQ(situations_, Situations{StatusItemSituation::noBus});
  item_->show(examplePresentation("12%"));
  time_.advance(Seconds{600});
  EXPECT_EQ(situations_.size(), 1U);
}

TEST_F(LinuxStatusItemTest, SaysThatThereIsNoPanelOnTheBusThatCame) {
  bus_.stop();
  startItem();
  time_.advance(Seconds{10});
  EXPECT_EQ(situations_, Situations{StatusItemSituation::noBus});
  bus_.start();
  EXPECT_TRUE(until([this] {
    time_.advance(Seconds{0.1});
    return situations_.size() > 1;
  }));
  EXPECT_EQ(situations_, (Situations{StatusItemSituation::noBus, StatusItemSituation::noHost}));
}

TEST_F(LinuxStatusItemTest, SaysThatThereWasNoBusBeforeItCame) {
  BusConnection none(loop_.raw(), *queue_, "unix:path=/nowhere/at/all");
  none.open();
  const LinuxStatusItem item(
      none, *queue_, engine_, options_,
      [this](StatusItemSituation situation) { situations_.push_back(situation); });
  EXPECT_EQ(situations_, Situations{StatusItemSituation::noBus});
}

TEST_F(LinuxStatusItemTest, RegistersOnAConnectionThatIsOpenAlready) {
  startPanel("waybar");
  BusConnection connection(loop_.raw(), *queue_, bus_.address());
  connection.open();
  ASSERT_TRUE(until([&] { return connection.bus() != nullptr; }));
  const LinuxStatusItem item(
      connection, *queue_, engine_, options_,
      [this](StatusItemSituation situation) { situations_.push_back(situation); });
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(untilShown());
  EXPECT_EQ(situations_, Situations{StatusItemSituation::shown});
}

TEST_F(LinuxStatusItemTest, TakesTheColoursFromThePortal) {
  portal_ = std::make_unique<ScriptedPortal>(*portalConnection_, 2);
  startPanel("tint2");
  ASSERT_TRUE(until([this] { return portalConnection_->bus() != nullptr; }));
  startItem();
  item_->show(examplePresentation("12%"));
  ASSERT_TRUE(untilRegistered());
  // The middle of the upper edge: nothing is written there.
  const auto edge = [this] {
    const test::Pixmap pixmap = ask().pixmaps.front();
    const auto pixel = static_cast<std::size_t>(pixmap.width) / 2 * 4;
    return std::pair<int, int>(pixmap.bytes[pixel], pixmap.bytes[pixel + 1]);
  };
  EXPECT_EQ(edge(), std::pair(0xEB, 0x26)) << "light desktop, plate";
  panel_->forgetSignals();
  portal_->change(1);
  ASSERT_TRUE(until([this] { return panel_->signals() == Strings{"NewIcon"}; }));
  EXPECT_EQ(edge(), std::pair(0, 0xF5)) << "dark desktop, light ink";
  portal_->change(1);
  portal_->change(7);
  ASSERT_TRUE(until([this] { return panel_->signals() == (Strings{"NewIcon", "NewIcon"}); }));
}

TEST_F(LinuxStatusItemTest, AsksAPortalThatStartsLater) {
  ASSERT_TRUE(showOn("tint2"));
  portal_ = std::make_unique<ScriptedPortal>(*portalConnection_, 1);
  ASSERT_TRUE(until([this] { return panel_->signals() == Strings{"NewIcon"}; }));
}

TEST_F(LinuxStatusItemTest, FitsABarOfTwentyFourPoints) {
  startItem();
  EXPECT_EQ(item_->thickness(), 24);
}

}  // namespace
}  // namespace vantora
