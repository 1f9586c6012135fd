// SPDX-License-Identifier: MIT
//
// The docked window on a display of its own, with a tray that the test plays.
#include "platform/linux/x11_tray/xembed_window.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/x11_tray/loop_display_thread.hpp"
#include "platform/linux/x11_tray/private_display.hpp"
#include "platform/linux/x11_tray/scripted_tray.hpp"
#include "platform/linux/x11_tray/xembed_pixels.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using State = XEmbedWindow::State;
using test::PrivateDisplay;
using test::ScriptedTray;
using test::VirtualQueue;
using test::VirtualTime;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Seconds settled{0.5};
constexpr Seconds moment{0.001};

class XEmbedWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    if (display_.name().empty()) {
      GTEST_SKIP() << "Xvfb is not installed";
    }
    start(display_.name());
  }
  void start(const std::string& display) {
    window_ = std::make_unique<XEmbedWindow>(
        thread_, *queue_, display,
        XEmbedWindow::Callbacks{
            .onState = [this](State state) { states_.push_back(state); },
            .picture =
                [this](int width, int height, int scale) {
                  ++drawings_;
                  drawnScale_ = scale;
                  return picture(width, height);
                },
            .onClick = [this](const XEmbedWindow::Click& click) { clicks_.push_back(click); },
            .onEnter = [this](const ScreenPoint& pointer) { entered_.push_back(pointer); },
            .onLeave = [this] { ++leavings_; },
            .onOrientation = [this](bool isVertical) { orientations_.push_back(isVertical); }});
  }

  // Ink that differs from pixel to pixel.
  static AlphaBitmap picture(int width, int height) {
    AlphaBitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        bitmap.at(x, y) = static_cast<std::uint8_t>(x * 7 + y * 31);
      }
    }
    return bitmap;
  }

  void startTray(ScriptedTray::Script script = {}) {
    tray_ = std::make_unique<ScriptedTray>(display_.name(), script);
  }
  // Lets both sides do what has arrived until the condition holds.
  bool until(const std::function<bool()>& isDone) {
    return test::runUntil(loop_, [&] {
      if (tray_ != nullptr) {
        tray_->handleEvents();
      }
      time_.runPosted();
      return isDone();
    });
  }
  bool untilState(State state) {
    return until([&] { return !states_.empty() && states_.back() == state; });
  }
  bool untilSize(int width, int height) {
    return until([&] { return tray_->size() == std::pair(width, height); });
  }
  bool untilPixels(Ink ink, TrayDepth depth) {
    return until([&] {
      const auto [width, height] = tray_->size();
      return tray_->pixels() == xPixels(picture(width, height), ink, depth);
    });
  }
  // Docked, with the time that the tray has to lay itself out gone by.
  bool dock(double points = 40) {
    window_->start(points);
    if (!until([&] { return tray_->isThere() && tray_->isMapped(); })) {
      return false;
    }
    settle();
    return untilState(State::docked);
  }
  // What has happened so far has reached the window, and half a second goes by.
  void settle() {
    sync();
    time_.advance(settled);
    sync();
  }
  // Whatever either side has sent has arrived at the other, and was handled.
  void sync() {
    for (int turn = 0; turn < 8; ++turn) {
      (void)tray_->size();  // a round trip
      uv_run(&loop_.raw(), UV_RUN_NOWAIT);
      tray_->handleEvents();
      time_.runPosted();
    }
  }

  PrivateDisplay display_;
  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  UvLoop loop_;
  test::LoopDisplayThread thread_{loop_};
  std::vector<State> states_;
  std::vector<XEmbedWindow::Click> clicks_;
  std::vector<ScreenPoint> entered_;
  int leavings_ = 0;
  std::vector<bool> orientations_;
  int drawings_ = 0;
  int drawnScale_ = 0;
  std::unique_ptr<ScriptedTray> tray_;
  std::unique_ptr<XEmbedWindow> window_;
};

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
