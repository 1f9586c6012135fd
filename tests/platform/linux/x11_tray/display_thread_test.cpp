// SPDX-License-Identifier: MIT
//
// The docked window and a display that does not answer: one that accepts and is silent,
// and a real server that is stopped.
#include "platform/linux/x11_tray/display_thread.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/x11_tray/private_display.hpp"
#include "platform/linux/x11_tray/scripted_tray.hpp"
#include "platform/linux/x11_tray/tray_loop.hpp"
#include "platform/linux/x11_tray/xembed_pixels.hpp"
#include "platform/linux/x11_tray/xembed_window.hpp"
#include "runtime/unique_fd.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using State = XEmbedWindow::State;
using test::PrivateDisplay;
using test::runUntil;
using test::ScriptedTray;

// Accepts connections and never sends a byte. It listens where
// libxcb looks first: the abstract socket of a display's number that is free.
class SilentDisplay {
 public:
  SilentDisplay() : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    constexpr int maxNumber = 60'000;
    int result = -1;
    for (number_ = 20'000; number_ < maxNumber && result != 0; ++number_) {
      const std::string path = "/tmp/.X11-unix/X" + std::to_string(number_ + 1);
      sockaddr_un place{};
      place.sun_family = AF_UNIX;
      std::memcpy(place.sun_path + 1, path.data(), path.size());
      result = ::bind(listener_.get(), reinterpret_cast<sockaddr*>(&place),
                      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + path.size()));
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(::listen(listener_.get(), 4), 0);
  }
  [[nodiscard]] std::string name() const { return ":" + std::to_string(number_); }
  [[nodiscard]] bool isAsked() {
    if (!client_) {
      client_ = UniqueFd(::accept(listener_.get(), nullptr, nullptr));
    }
    char byte = 0;
    return client_ && ::recv(client_.get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 1;
  }

 private:
  int number_ = 0;
  UniqueFd listener_;
  UniqueFd client_;
};

// Virtual timers, and tasks that other threads post run on the loop.
class LoopQueue final : public TaskQueue {
 public:
  LoopQueue(UvLoop& loop, TaskQueue& timers) : loop_(loop), timers_(timers) {}
  void post(Task task) override { loop_.queue().post(std::move(task)); }
  TimerHandle runAfter(Seconds delay, Seconds leeway, Task task) override {
    return timers_.runAfter(delay, leeway, std::move(task));
  }
  TimerHandle runEvery(Seconds interval, Seconds leeway, Task task) override {
    return timers_.runEvery(interval, leeway, std::move(task));
  }

 private:
  UvLoop& loop_;
  TaskQueue& timers_;
};

class DisplayThreadTest : public testing::Test {
 protected:
  void open(const std::string& display) {
    window_ = std::make_unique<XEmbedWindow>(
        thread_, queue_, display,
        XEmbedWindow::Callbacks{.onState = [this](State state) { states_.push_back(state); },
                                .picture =
                                    [this](int width, int height, int) {
                                      ++drawings_;
                                      return picture(width, height);
                                    },
                                .onClick = [](const XEmbedWindow::Click&) {},
                                .onEnter = [](const ScreenPoint&) {},
                                .onLeave = [] {},
                                .onOrientation = [](bool) {}});
    window_->start(40);
  }
  [[nodiscard]] AlphaBitmap picture(int width, int height) const {
    AlphaBitmap bitmap(width, height);
    bitmap.pixels.assign(bitmap.pixels.size(), ink_);
    return bitmap;
  }
  bool until(const std::function<bool()>& isDone) {
    return test::runUntil(loop_, tray_, time_, isDone);
  }
  bool untilState(State state) {
    return until([&] { return !states_.empty() && states_.back() == state; });
  }
  bool dock() {
    open(display_->name());
    return until([this] { return tray_->isThere() && tray_->isMapped(); }) && until([this] {
             time_.advance(Seconds{0.1});
             return !states_.empty() && states_.back() == State::docked;
           });
  }

  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> timers_ = time_.makeQueue();
  UvLoop loop_;
  LoopQueue queue_{loop_, *timers_};
  std::vector<State> states_;
  int drawings_ = 0;
  std::uint8_t ink_ = 0;
  std::unique_ptr<PrivateDisplay> display_;
  std::unique_ptr<ScriptedTray> tray_;
  OwnDisplayThread thread_;
  std::unique_ptr<XEmbedWindow> window_;
};

TEST_F(DisplayThreadTest, RunsNothingBeforeTheFirstTask) {
  EXPECT_EQ(window_, nullptr);
  std::atomic<bool> hasRun = false;
  std::thread::id thread;
  thread_.post([&](uv_loop_t&) {
    thread = std::this_thread::get_id();
    hasRun = true;
  });
  ASSERT_TRUE(until([&] { return hasRun.load(); }));
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(DisplayThreadTest, ADisplayThatIsSilentCountsAsAbsent) {
  SilentDisplay display;
  open(display.name());
  EXPECT_EQ(window_->state(), State::starting);
  ASSERT_TRUE(until([&] { return display.isAsked(); }));
  time_.advance(XEmbedWindow::answerTimeout - Seconds{0.001});
  EXPECT_EQ(window_->state(), State::starting);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(states_, std::vector{State::absent});
  window_->update(50);
  window_->stop();
  window_->start(50);
  EXPECT_EQ(window_->state(), State::starting) << "no call has waited";
  window_.reset();
}

TEST_F(DisplayThreadTest, AThreadThatHangsIsLeftBehind) {
  SilentDisplay display;
  auto thread = std::make_unique<OwnDisplayThread>();
  auto window = std::make_unique<XEmbedWindow>(
      *thread, queue_, display.name(),
      XEmbedWindow::Callbacks{.onState = [](State) { ADD_FAILURE() << "after the end"; },
                              .picture = [](int, int, int) { return AlphaBitmap(); },
                              .onClick = [](const XEmbedWindow::Click&) {},
                              .onEnter = [](const ScreenPoint&) {},
                              .onLeave = [] {},
                              .onOrientation = [](bool) {}});
  window->start(40);
  ASSERT_TRUE(until([&] { return display.isAsked(); }));
  window.reset();
  thread.reset();
}

TEST_F(DisplayThreadTest, DocksWhenAStoppedServerGoesOn) {
  display_ = std::make_unique<PrivateDisplay>();
  tray_ = std::make_unique<ScriptedTray>(display_->name(), ScriptedTray::Script{});
  display_->pause();
  open(display_->name());
  time_.advance(XEmbedWindow::answerTimeout);
  EXPECT_EQ(states_, std::vector{State::absent});
  display_->resume();
  ASSERT_TRUE(until([this] { return tray_->isThere() && tray_->isMapped(); }));
  EXPECT_TRUE(untilState(State::docking));
}

TEST_F(DisplayThreadTest, SendsAStoppedServerABoundedNumberOfPictures) {
  display_ = std::make_unique<PrivateDisplay>();
  tray_ = std::make_unique<ScriptedTray>(display_->name(), ScriptedTray::Script{});
  ASSERT_TRUE(dock());
  display_->pause();
  // What its socket holds is taken: pictures of 40 x 24 pixels of 4 bytes.
  int rounds = 0;
  int before = -1;
  ASSERT_TRUE(runUntil(loop_, [&] {
    const bool isStuck = drawings_ == before && ++rounds > 50;
    rounds = drawings_ == before ? rounds : 0;
    before = drawings_;
    window_->update(40);
    return isStuck;
  }));
  ink_ = 200;
  for (int update = 0; update < 10'000; ++update) {
    window_->update(40);
    time_.advance(Seconds{1});
  }
  EXPECT_EQ(drawings_, before);
  display_->resume();
  const auto expected = xPixels(picture(40, 24), Ink::lightOnPlate, TrayDepth::opaque);
  EXPECT_TRUE(until([&] { return tray_->pixels() == expected; })) << "the latest";
}

}  // namespace
}  // namespace vantora
