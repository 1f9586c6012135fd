// SPDX-License-Identifier: MIT
//
// The item between a panel on the bus and a tray on the display: where it is, and what it
// shows there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/linux/status_item/status_item_tray_stage.hpp"
#include "platform/linux/x11_tray/xembed_pixels.hpp"

namespace vantora {
namespace {

using test::examplePresentation;
using test::line;
using testing::ElementsAre;
using testing::IsEmpty;

using StatusItemTrayTest = test::StatusItemTrayStage;

TEST_F(StatusItemTrayTest, DocksWhereThePanelKeepsAWindowWide) {
  startInTray();
  EXPECT_THAT(panel_->items(), IsEmpty()) << "not twice in one panel";
  EXPECT_THAT(situations_, ElementsAre(StatusItemSituation::shown));
  EXPECT_EQ(tray_->size(), std::pair(66, 24)) << "three points on either side of the picture";
  StatusImage image = examplePresentation("12%").image;
  image.width = 66;
  image.height = 24;
  for (PlacedText& text : image.texts) {
    text.x += 3;
    text.y += 1;
  }
  const AlphaBitmap expected = rasterise(image, engine_, 1);
  EXPECT_TRUE(until(
      [&] { return tray_->pixels() == xPixels(expected, Ink::lightOnPlate, TrayDepth::opaque); }));
}

TEST_F(StatusItemTrayTest, StaysOnTheBusWhereThePanelShowsItWide) {
  startTray();
  startPanel("waybar");
  startItem();
  ASSERT_TRUE(untilRegistered());
  time_.advance(Seconds{600});
  EXPECT_THAT(tray_->requests(), IsEmpty());
}

TEST_F(StatusItemTrayTest, IsASquareInAVerticalPanelWhoseTraySaysSo) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  EXPECT_EQ(panel_->signals().back(), "NewIcon");
  EXPECT_EQ(firstPicture(), std::pair(16, 16));
  tray_->turn(false);
  panel_->forgetSignals();
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  EXPECT_EQ(firstPicture(), std::pair(66, 22));
  EXPECT_THAT(tray_->requests(), IsEmpty());
}

TEST_F(StatusItemTrayTest, ExplainsWhereItIsShownAndInWhichForm) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  const std::string square = "quadrado com um módulo, porque o painel é vertical";
  ASSERT_TRUE(until([&] { return !decisions_.empty() && decisions_.back().ends_with(square); }));
  EXPECT_EQ(decisions_.back(), "painel: MATE; forma: " + square);
  tray_->turn(false);
  ASSERT_TRUE(until([&] { return decisions_.back() == "painel: MATE; forma: imagem inteira"; }));
  panel_.reset();
  ASSERT_TRUE(until([&] { return decisions_.back() == "painel: nenhum"; }));
  startPanel(xfce);
  ASSERT_TRUE(until([&] {
    return decisions_.back().starts_with("painel: bandeja do X11; forma: o que couber");
  }));
  ASSERT_TRUE(untilDocked());
  settle();
  ASSERT_TRUE(until([&] {
    return decisions_.back().starts_with("painel: bandeja do X11; forma: imagem inteira");
  }));
}

TEST_F(StatusItemTrayTest, ReportsTheScaleAndTheInkThatTheTrayGets) {
  startInTray();
  ASSERT_TRUE(until([this] { return item_->report().form == "imagem inteira"; }));
  const StatusItemReport report = item_->report();
  EXPECT_EQ(report.panel, "Xfce, bandeja do X11");
  EXPECT_EQ(report.program, xfce);
  EXPECT_EQ(report.scale, "1 pixel por ponto");
  EXPECT_EQ(report.ink, "clara, sobre uma placa escura");
}

TEST_F(StatusItemTrayTest, ReportsThatASquareIsForTheColumnOfAVerticalPanel) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  ASSERT_TRUE(until([this] { return item_->report().form == "quadrado com um módulo"; }));
  EXPECT_EQ(item_->report().formWhy, "o painel é vertical: não há largura para a imagem");
}

TEST_F(StatusItemTrayTest, ForgetsTheOrientationWithThePanelThatHadIt) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  panel_.reset();
  startPanel("waybar");
  ASSERT_TRUE(untilRegistered());
  EXPECT_EQ(firstPicture(), std::pair(132, 44));
}

TEST_F(StatusItemTrayTest, GoesBackToTheBusWhereTheTraySqueezesIt) {
  startTray({.widest = 24});
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilDocked());
  EXPECT_THAT(panel_->items(), IsEmpty());
  settle();
  EXPECT_TRUE(untilUndocked());
  EXPECT_TRUE(untilRegistered());
  // And does not try that panel again.
  item_->show(examplePresentation("12%"));
  time_.advance(Seconds{600});
  EXPECT_EQ(tray_->requests().size(), 1U);
}

TEST_F(StatusItemTrayTest, GoesBackToTheBusWhenTheTrayIsSqueezedLater) {
  startInTray();
  tray_->setWidest(30);
  settle();
  EXPECT_TRUE(untilUndocked());
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusItemTrayTest, TriesThePanelThatComesAfterTheOneThatSqueezedIt) {
  startTray({.widest = 24});
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilDocked());
  settle();
  ASSERT_TRUE(untilRegistered());
  panel_.reset();
  tray_.reset();
  startTray();
  startPanel(xfce);
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_THAT(panel_->items(), IsEmpty());
  EXPECT_EQ(tray_->size(), std::pair(66, 24));
}

TEST_F(StatusItemTrayTest, WaitsForTheTrayOfAPanelThatStarts) {
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilWaitingForTheTray());
  time_.advance(Seconds{1.999});
  startTray();
  ASSERT_TRUE(untilDocked());
  settle();
  time_.advance(Seconds{600});
  EXPECT_THAT(panel_->items(), IsEmpty()) << "the item did not come and go";
}

TEST_F(StatusItemTrayTest, RegistersWithAPanelThatBringsNoTray) {
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilWaitingForTheTray());
  time_.advance(Seconds{1.999});
  EXPECT_THAT(panel_->items(), IsEmpty());
  time_.advance(Seconds{0.001});
  ASSERT_TRUE(untilRegistered());
  // A tray that comes after all is taken all the same.
  startTray();
  ASSERT_TRUE(untilDocked());
  EXPECT_EQ(situations_, std::vector{StatusItemSituation::shown});
}

TEST_F(StatusItemTrayTest, DocksAfterTheTimeoutWhereNoHostTakesItOnTheBus) {
  startTray();
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{4.999});
  EXPECT_THAT(tray_->requests(), IsEmpty());
  time_.advance(Seconds{0.001});
  ASSERT_TRUE(untilDocked());
  ASSERT_TRUE(until([this] { return !situations_.empty(); }));
  EXPECT_EQ(situations_.back(), StatusItemSituation::shown);
}

TEST_F(StatusItemTrayTest, StaysInTheTrayBesideAWatcherThatShowsNothing) {
  startTray({.widest = 24});
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  ASSERT_TRUE(untilDocked());
  settle();
  startPanel("watcher", {.hasHost = false});
  ASSERT_TRUE(until([this] { return panel_->hasAnsweredForHost(); }));
  settle();
  EXPECT_TRUE(tray_->isThere());
  EXPECT_THAT(panel_->items(), IsEmpty());
  panel_.reset();
  settle();
  time_.advance(Seconds{600});
  settle();
  EXPECT_TRUE(tray_->isThere());
  EXPECT_EQ(tray_->requests().size(), 1U);
  EXPECT_EQ(situations_.back(), StatusItemSituation::shown);
  startPanel("waybar");
  EXPECT_TRUE(untilUndocked());
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusItemTrayTest, DocksBesideAWatcherThatHasLostItsHost) {
  startTray();
  startPanel("watcher");
  startItem();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return !situations_.empty(); }));
  panel_->setHasHost(false);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_EQ(situations_, std::vector{StatusItemSituation::shown});
}

TEST_F(StatusItemTrayTest, RegistersWithThePanelWhereTheDisplayIsSilent) {
  startPanel(xfce);
  startItem(silentThread_);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 2; }));
  time_.advance(Seconds{1.999});
  EXPECT_THAT(panel_->items(), IsEmpty());
  time_.advance(Seconds{0.001});
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusItemTrayTest, SaysThatThereIsNoPanelWhereTheDisplayIsSilent) {
  startItem(silentThread_);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  EXPECT_THAT(situations_, IsEmpty());
  time_.advance(XEmbedWindow::answerTimeout);
  EXPECT_THAT(situations_, ElementsAre(StatusItemSituation::noHost));
}

TEST_F(StatusItemTrayTest, ShowsItsFirstModuleInANarrowTrayThatIsAllThereIs) {
  startTray({.widest = 24});
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_TRUE(tray_->isThere());
  const StatusImage square = squareImage({line("12%"), line("48")}, 24, engine_);
  const AlphaBitmap expected = rasterise(square, engine_, 1);
  EXPECT_TRUE(until(
      [&] { return tray_->pixels() == xPixels(expected, Ink::lightOnPlate, TrayDepth::opaque); }));
}

TEST_F(StatusItemTrayTest, DocksAgainWithAPanelThatRestarts) {
  startInTray();
  panel_.reset();
  tray_.reset();
  time_.advance(Seconds{2});
  startTray();
  startPanel(xfce);
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_THAT(panel_->items(), IsEmpty());
}

}  // namespace
}  // namespace vantora
