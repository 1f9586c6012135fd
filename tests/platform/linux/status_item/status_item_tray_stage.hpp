// SPDX-License-Identifier: MIT
//
// The item between a panel on the bus and a tray on the display, both played by the test.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/status_item/recorded_actions.hpp"
#include "platform/linux/status_item/status_item_stage.hpp"
#include "platform/linux/x11_tray/loop_display_thread.hpp"
#include "platform/linux/x11_tray/private_display.hpp"
#include "platform/linux/x11_tray/scripted_tray.hpp"
#include "platform/linux/x11_tray/tray_loop.hpp"
#include "ports/popup_menu.hpp"
#include "ports/tool_tip.hpp"

namespace vantora::test {

class FakePopupMenu final : public PopupMenu {
 public:
  void open(const MenuContent& content, OnChosen onChosen) override {
    opened.push_back(content);
    onChosen_ = std::move(onChosen);
  }
  void close() override {
    ++closings;
    onChosen_ = nullptr;
  }
  void choose(std::int32_t id) { std::exchange(onChosen_, nullptr)(id); }

  std::vector<MenuContent> opened;
  int closings = 0;

 private:
  OnChosen onChosen_;
};

class FakeToolTip final : public ToolTip {
 public:
  void show(const ToolTipContent& content) override { shown.push_back(content); }
  void hide() override { ++hidings; }

  std::vector<ToolTipContent> shown;
  int hidings = 0;
};

// A display that answers nothing.
class SilentDisplayThread final : public DisplayThread {
 public:
  void post(Task /*task*/) override {}
};

class StatusItemTrayStage : public StatusItemStage {
 protected:
  static constexpr const char* xfce = "panel-6-systray";

  ~StatusItemTrayStage() override { item_.reset(); }

  void SetUp() override {
    if (display_.name().empty()) {
      GTEST_SKIP() << "Xvfb is not installed";
    }
  }

  void startTray(ScriptedTray::Script script = {}) {
    tray_ = std::make_unique<ScriptedTray>(display_.name(), script);
  }
  void startItem() { startItem(thread_); }
  void startItem(DisplayThread& thread) {
    options_.onDecision = [this](const std::string& line) { decisions_.push_back(line); };
    makeItem();
    item_->useTray(thread, display_.name(), {menu_, toolTip_});
    item_->setActions(user_.actions());
    item_->show(examplePresentation("12%"));
    itemConnection_->open();
  }
  bool until(const std::function<bool()>& isDone) override {
    return runUntil(loop_, tray_, time_, isDone);
  }
  bool untilDocked() {
    return until([this] { return tray_->isThere() && tray_->isMapped(); });
  }
  bool untilUndocked() {
    return until([this] { return !tray_->isThere(); });
  }
  // The panel has been seen, and one timer is left.
  bool untilWaitingForTheTray() {
    return until([this] { return !situations_.empty() && time_.pendingCount() == 1; });
  }
  // Width and height of the first that the panel is given.
  std::pair<int, int> firstPicture() {
    panel_->properties.reset();
    panel_->ask();
    if (!until([this] { return panel_->properties && !panel_->properties->pixmaps.empty(); })) {
      return {0, 0};
    }
    return {panel_->properties->pixmaps[0].width, panel_->properties->pixmaps[0].height};
  }
  // Lets the tray's half second go by with everything that was sent before and after it.
  void settle() {
    sync();
    time_.advance(Seconds{0.5});
    sync();
  }
  void sync() { exchange(loop_, *tray_, time_); }
  void startInTray() {
    startTray();
    startPanel(xfce);
    startItem();
    ASSERT_TRUE(untilDocked());
    settle();
  }
  void click(int button, std::uint32_t time = 4321) {
    tray_->press(button, 10, 8);
    tray_->release(button, 10, 8, time);
  }
  bool untilMenu(std::size_t count) {
    return until([this, count] { return menu_.opened.size() == count; });
  }
  bool untilDid(const std::vector<std::string>& what) {
    return until([&] { return user_.did == what; });
  }

  PrivateDisplay display_;
  LoopDisplayThread thread_{loop_};
  SilentDisplayThread silentThread_;
  FakePopupMenu menu_;
  FakeToolTip toolTip_;
  RecordedActions user_;
  std::vector<std::string> decisions_;
  std::unique_ptr<ScriptedTray> tray_;
};

}  // namespace vantora::test
