// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/x11_tray/loop_display_thread.hpp"
#include "platform/linux/x11_tray/private_display.hpp"
#include "platform/linux/x11_tray/scripted_tray.hpp"
#include "platform/linux/x11_tray/tray_loop.hpp"
#include "platform/linux/x11_tray/xembed_pixels.hpp"
#include "platform/linux/x11_tray/xembed_window.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

/// The docked window on a display of its own, with a tray that the test plays.
class XEmbedWindowFixture : public testing::Test {
 protected:
  using State = XEmbedWindow::State;
  static constexpr Seconds settled{0.5};
  static constexpr Seconds moment{0.001};

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
  bool until(const std::function<bool()>& isDone) { return runUntil(loop_, tray_, time_, isDone); }
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
  void sync() { exchange(loop_, *tray_, time_); }

  PrivateDisplay display_;
  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  UvLoop loop_;
  LoopDisplayThread thread_{loop_};
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

}  // namespace vantora::test
