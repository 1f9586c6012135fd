// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/xembed_window.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "platform/linux/x11_tray/xembed_window_fixture.hpp"

namespace vantora {
namespace {

using test::PrivateDisplay;
using test::ScriptedTray;
using testing::ElementsAre;
using testing::IsEmpty;

using XEmbedWindowTest = test::XEmbedWindowFixture;

TEST_F(XEmbedWindowTest, DocksWithATrayThatIsThere) {
  startTray();
  window_->start(40);
  ASSERT_TRUE(untilState(State::docking));
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  EXPECT_EQ(tray_->requests().size(), 1U);
  EXPECT_TRUE(tray_->isEmbedded());
  EXPECT_EQ(tray_->size(), std::pair(40, 24)) << "as wide as asked for, as high as the tray";
  sync();
  time_.advance(settled - moment);
  sync();
  EXPECT_EQ(window_->state(), State::docking);
  time_.advance(moment);
  sync();
  EXPECT_EQ(window_->state(), State::docked);
  EXPECT_THAT(states_, ElementsAre(State::docking, State::docked));
}

TEST_F(XEmbedWindowTest, DocksWhenATrayComes) {
  window_->start(40);
  ASSERT_TRUE(untilState(State::absent));
  startTray();
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  settle();
  EXPECT_THAT(states_, ElementsAre(State::absent, State::docking, State::docked));
}

TEST_F(XEmbedWindowTest, StaysUnseenUntilTheTrayHasTakenItIn) {
  startTray({.embeds = false});
  window_->start(40);
  ASSERT_TRUE(until([this] { return tray_->isThere(); }));
  sync();
  EXPECT_FALSE(tray_->isMapped());
  EXPECT_THAT(tray_->info(), ElementsAre(0U, 0U));
  tray_->embed();
  ASSERT_TRUE(until([this] { return tray_->isMapped(); }));
  EXPECT_THAT(tray_->info(), ElementsAre(0U, 1U));
}

TEST_F(XEmbedWindowTest, WaitsFiveSecondsForATrayThatIsSlow) {
  startTray({.embeds = false});
  window_->start(40);
  ASSERT_TRUE(until([this] { return tray_->isThere(); }));
  time_.advance(Seconds{5} - moment);
  EXPECT_EQ(window_->state(), State::docking);
  time_.advance(moment);
  EXPECT_EQ(window_->state(), State::absent);
  ASSERT_TRUE(until([this] { return !tray_->isThere(); })) << "no window is left on the desktop";
}

TEST_F(XEmbedWindowTest, CarriesTheProgramsName) {
  startTray();
  ASSERT_TRUE(dock());
  EXPECT_EQ(tray_->text("WM_NAME"), "Vantora");
  EXPECT_EQ(tray_->text("_NET_WM_NAME"), "Vantora");
  EXPECT_EQ(tray_->text("WM_CLASS"), std::string("vantora\0Vantora\0", 16));
}

TEST_F(XEmbedWindowTest, ShowsThePictureOnAPlateWhereNoColoursArePublished) {
  startTray();
  ASSERT_TRUE(dock());
  EXPECT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
}

TEST_F(XEmbedWindowTest, FindsPixelsOfItsOwnOnADisplayOfThirtyBits) {
  PrivateDisplay deep(30);
  start(deep.name());
  tray_ = std::make_unique<ScriptedTray>(deep.name(), ScriptedTray::Script{});
  ASSERT_TRUE(dock());
  EXPECT_TRUE(until([&] {
    const auto [width, height] = tray_->size();
    auto expected = xPixels(picture(width, height), Ink::lightOnPlate, TrayDepth::opaque);
    for (std::uint32_t& pixel : expected) {
      pixel |= 0xFF000000;  // the visual that is there has alpha
    }
    return tray_->pixels() == expected;
  }));
}

TEST_F(XEmbedWindowTest, ShowsARoundedPlateInATranslucentTrayWithoutColours) {
  startTray({.isTranslucent = true});
  ASSERT_TRUE(dock());
  EXPECT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::translucent));
}

TEST_F(XEmbedWindowTest, WritesInTheTraysColour) {
  startTray({.isTranslucent = true, .grey = std::uint16_t{60'000}});
  ASSERT_TRUE(dock());
  EXPECT_TRUE(untilPixels(Ink::light, TrayDepth::translucent));
  tray_->setGrey(9'000);
  EXPECT_TRUE(untilPixels(Ink::dark, TrayDepth::translucent)) << "the panel's theme has changed";
}

TEST_F(XEmbedWindowTest, DrawsAgainWhatWasWipedOut) {
  startTray();
  ASSERT_TRUE(dock());
  ASSERT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
  sync();
  const int before = drawings_;
  tray_->wipe();
  ASSERT_TRUE(until([&] { return drawings_ > before; }));
  EXPECT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
}

TEST_F(XEmbedWindowTest, DrawsOnceMoreWhenTheTrayHasLaidItselfOut) {
  startTray();
  window_->start(40);
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  ASSERT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
  sync();
  const int before = drawings_;
  settle();
  EXPECT_EQ(window_->state(), State::docked);
  EXPECT_EQ(drawings_, before + 1);
  time_.advance(Seconds{60});
  sync();
  EXPECT_EQ(drawings_, before + 1);
}

TEST_F(XEmbedWindowTest, DrawsANewPictureOfTheSameWidthInPlace) {
  startTray();
  ASSERT_TRUE(dock());
  sync();
  const int before = drawings_;
  window_->update(40);
  EXPECT_EQ(drawings_, before + 1);
  settle();
  EXPECT_EQ(drawings_, before + 1);
  EXPECT_EQ(tray_->requests().size(), 1U);
}

TEST_F(XEmbedWindowTest, DocksAnewWhenTheTrayIsTurned) {
  startTray();
  ASSERT_TRUE(dock());
  tray_->turn(true);
  ASSERT_TRUE(until([this] { return tray_->requests().size() == 2 && tray_->isMapped(); }));
  settle();
  EXPECT_EQ(tray_->size(), std::pair(22, 24));
  tray_->turn(false);
  ASSERT_TRUE(until([this] { return tray_->requests().size() == 3 && tray_->isMapped(); }));
  settle();
  EXPECT_EQ(tray_->size(), std::pair(40, 24));
  EXPECT_EQ(window_->state(), State::docked);
}

TEST_F(XEmbedWindowTest, FollowsTheTraysOrientationWithoutDocking) {
  startTray({.isVertical = true});
  window_->watch();
  window_->watch();
  ASSERT_TRUE(until([this] { return !orientations_.empty(); }));
  tray_->turn(false);
  ASSERT_TRUE(until([this] { return orientations_.size() == 2; }));
  tray_.reset();
  ASSERT_TRUE(until([this] { return orientations_.size() == 3; }));
  startTray({.isVertical = true});
  ASSERT_TRUE(until([this] { return orientations_.size() == 4; }));
  EXPECT_THAT(orientations_, ElementsAre(true, false, false, true));
  EXPECT_THAT(tray_->requests(), IsEmpty());
  EXPECT_THAT(states_, IsEmpty());
}

TEST_F(XEmbedWindowTest, LeavesTheTrayToWatchIt) {
  startTray();
  ASSERT_TRUE(dock());
  window_->watch();
  EXPECT_EQ(window_->state(), State::absent);
  ASSERT_TRUE(until([this] { return !tray_->isThere(); }));
  ASSERT_TRUE(until([this] { return !orientations_.empty(); }));
  EXPECT_THAT(orientations_, ElementsAre(false));
  time_.advance(Seconds{60});
  sync();
  EXPECT_EQ(tray_->requests().size(), 1U);
}

TEST_F(XEmbedWindowTest, DocksInATrayThatItWatched) {
  startTray();
  window_->watch();
  ASSERT_TRUE(until([this] { return !orientations_.empty(); }));
  ASSERT_TRUE(dock());
  tray_->turn(true);
  ASSERT_TRUE(until([this] { return tray_->requests().size() == 2; }));
  EXPECT_EQ(orientations_.size(), 1U);
}

TEST_F(XEmbedWindowTest, DocksAgainWithATrayThatRestarts) {
  startTray();
  ASSERT_TRUE(dock());
  tray_.reset();
  ASSERT_TRUE(untilState(State::absent));
  window_->update(50);
  states_.clear();
  startTray();
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  settle();
  EXPECT_THAT(states_, ElementsAre(State::docking, State::docked));
  EXPECT_EQ(tray_->size(), std::pair(50, 24));
  EXPECT_TRUE(untilPixels(Ink::lightOnPlate, TrayDepth::opaque));
}

TEST_F(XEmbedWindowTest, MovesToATrayThatTakesOver) {
  startTray();
  ASSERT_TRUE(dock());
  const auto old = std::move(tray_);
  startTray();
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  EXPECT_FALSE(old->isThere());
}

TEST_F(XEmbedWindowTest, LeavesNoWindowOnTheDesktopWhenTheTrayGivesItBack) {
  startTray();
  ASSERT_TRUE(dock());
  tray_->giveBack();
  ASSERT_TRUE(untilState(State::absent));
  EXPECT_TRUE(until([this] { return !tray_->isThere(); }));
}

TEST_F(XEmbedWindowTest, GoesWhenItIsStoppedAndComesBackWhenStarted) {
  startTray();
  ASSERT_TRUE(dock());
  window_->stop();
  EXPECT_EQ(window_->state(), State::absent);
  EXPECT_TRUE(until([this] { return !tray_->isThere(); }));
  EXPECT_EQ(time_.pendingCount(), 0U);
  ASSERT_TRUE(dock());
  EXPECT_EQ(tray_->requests().size(), 2U);
}

TEST_F(XEmbedWindowTest, IsAbsentWithoutADisplay) {
  // Not that of a server that has stopped: the next one to start takes its number.
  start(":9999");
  window_->start(40);
  ASSERT_TRUE(untilState(State::absent));
  window_->update(50);
  EXPECT_THAT(states_, ElementsAre(State::absent));
}

TEST_F(XEmbedWindowTest, IsAbsentAndAtRestOnceTheDisplayIsGone) {
  startTray();
  ASSERT_TRUE(dock());
  tray_.reset();
  display_.stop();
  ASSERT_TRUE(untilState(State::absent));
  for (int turn = 0; turn < 8; ++turn) {
    uv_run(&loop_.raw(), UV_RUN_NOWAIT);
    time_.runPosted();
  }
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_EQ(uv_backend_timeout(&loop_.raw()), -1) << "something is left that turns the loop";
}

TEST_F(XEmbedWindowTest, ReportsWhichButtonWasClickedAndWhere) {
  startTray();
  ASSERT_TRUE(dock());
  using Button = XEmbedWindow::Button;
  const std::vector<Button> buttons{Button::left, Button::middle, Button::right};
  for (int number = 1; number <= 3; ++number) {
    tray_->press(number, 7, 9);
    tray_->release(number, 8, 10, 777);
    ASSERT_TRUE(until([&] { return clicks_.size() == static_cast<std::size_t>(number); }));
    EXPECT_EQ(clicks_.back().button, buttons[static_cast<std::size_t>(number - 1)]);
  }
  const auto [x, y] = tray_->place();
  EXPECT_EQ(clicks_.back().pointer, (ScreenPoint{x + 8, y + 10}));
  EXPECT_EQ(clicks_.back().window, (ScreenArea{x, y, 40, 24}));
  EXPECT_EQ(clicks_.back().time, 777U);
}

TEST_F(XEmbedWindowTest, ReportsThatThePointerCameAndWent) {
  startTray();
  ASSERT_TRUE(dock());
  tray_->enter(5, 6);
  ASSERT_TRUE(until([this] { return !entered_.empty(); }));
  const auto [x, y] = tray_->place();
  EXPECT_THAT(entered_, ElementsAre(ScreenPoint{x + 5, y + 6}));
  tray_->leave();
  ASSERT_TRUE(until([this] { return leavings_ == 1; }));
  tray_->leave(XCB_NOTIFY_MODE_GRAB);
  ASSERT_TRUE(until([this] { return leavings_ == 2; }));
  tray_->enter(5, 6, XCB_NOTIFY_MODE_UNGRAB);
  sync();
  EXPECT_EQ(entered_.size(), 1U) << "a menu has closed over a pointer that never left";
}

TEST_F(XEmbedWindowTest, TakesOnlyAPressAndItsReleaseForAClick) {
  startTray();
  ASSERT_TRUE(dock());
  tray_->release(3, 8, 10);  // the press has closed a menu
  tray_->press(1, 8, 10);
  tray_->release(1, 41, 10);  // thought better of
  tray_->press(1, 8, 10);
  tray_->release(1, 8, -1);
  tray_->press(1, 8, 10);
  tray_->release(3, 8, 10);
  tray_->press(4, 8, 10);  // the wheel
  tray_->release(4, 8, 10);
  sync();
  EXPECT_THAT(clicks_, IsEmpty());
  tray_->press(2, 8, 10);
  tray_->release(2, 8, 10);
  ASSERT_TRUE(until([this] { return clicks_.size() == 1; }));
}

}  // namespace
}  // namespace vantora
