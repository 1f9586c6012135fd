// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/xembed_window.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "platform/linux/x11_tray/xembed_window_fixture.hpp"

namespace vantora {
namespace {

using testing::ElementsAre;

using XEmbedWindowTest = test::XEmbedWindowFixture;

TEST_F(XEmbedWindowTest, ChangesItsWidthWhileItIsDocked) {
  startTray();
  ASSERT_TRUE(dock());
  for (const double points : {63.2, 25.0}) {
    window_->update(points);
    const int pixels = points > 60 ? 64 : 25;
    ASSERT_TRUE(untilSize(pixels, 24));
    settle();
    EXPECT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
  }
  EXPECT_EQ(window_->state(), State::docked);
  EXPECT_EQ(tray_->requests().size(), 1U) << "the window stays the same";
}

TEST_F(XEmbedWindowTest, IsSqueezedByATrayOfSquares) {
  startTray({.widest = 24});
  window_->start(40);
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  settle();
  EXPECT_THAT(states_, ElementsAre(State::docking, State::squeezed));
}

TEST_F(XEmbedWindowTest, AsksAVerticalTrayForASquare) {
  startTray({.widest = 30, .isVertical = true});
  ASSERT_TRUE(dock());
  EXPECT_EQ(tray_->size(), std::pair(22, 24));
  EXPECT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
  window_->update(70);
  settle();
  EXPECT_EQ(tray_->size(), std::pair(22, 24));
  EXPECT_EQ(window_->state(), State::docked);
}

TEST_F(XEmbedWindowTest, TriesASmallerScaleInATrayThatDoesNotScale) {
  test::setResources(display_.name(), "Xft.dpi:\t192\n");
  startTray({.widest = 50});
  window_->start(40);
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  EXPECT_TRUE(untilSize(50, 24)) << "80 pixels were asked for";
  settle();
  EXPECT_TRUE(untilSize(40, 24));
  settle();
  EXPECT_THAT(states_, ElementsAre(State::docking, State::docked));
  EXPECT_EQ(drawnScale_, 1);
  EXPECT_EQ(tray_->requests().size(), 1U) << "the same window";
}

TEST_F(XEmbedWindowTest, IsSqueezedWhereEvenTheSmallestScaleIsTooWide) {
  test::setResources(display_.name(), "Xft.dpi:\t288\n");
  startTray({.widest = 30});
  window_->start(40);
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  settle();
  settle();
  EXPECT_THAT(states_, ElementsAre(State::docking));
  settle();
  EXPECT_THAT(states_, ElementsAre(State::docking, State::squeezed));
}

TEST_F(XEmbedWindowTest, IsSqueezedWhenItNeedsMoreThanTheTrayHas) {
  startTray({.widest = 50});
  ASSERT_TRUE(dock());
  window_->update(80);
  ASSERT_TRUE(untilSize(50, 24));
  sync();
  time_.advance(settled - moment);
  sync();
  EXPECT_EQ(window_->state(), State::docked);
  time_.advance(moment);
  sync();
  EXPECT_EQ(window_->state(), State::squeezed);
}

TEST_F(XEmbedWindowTest, IsSqueezedOnlyWhenItLastsForHalfASecond) {
  startTray();
  ASSERT_TRUE(dock());
  tray_->setWidest(20);
  ASSERT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
  sync();
  time_.advance(settled - moment);
  EXPECT_EQ(window_->state(), State::docked);
  tray_->setWidest(40);
  sync();
  time_.advance(settled + settled);
  sync();
  EXPECT_EQ(window_->state(), State::docked);
  EXPECT_EQ(std::count(states_.begin(), states_.end(), State::squeezed), 0);

  tray_->setWidest(20);
  settle();
  EXPECT_EQ(window_->state(), State::squeezed);
  tray_->setWidest(40);
  settle();
  EXPECT_EQ(window_->state(), State::docked) << "the tray has room again";
}

}  // namespace
}  // namespace vantora
