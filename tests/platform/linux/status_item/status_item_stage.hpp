// SPDX-License-Identifier: MIT
//
// The item on a bus of its own, with a panel that the test plays.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/status_item/block_text_engine.hpp"
#include "platform/linux/status_item/linux_status_item.hpp"
#include "platform/linux/status_item/scripted_panel.hpp"
#include "platform/linux/status_item/scripted_portal.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

class StatusItemStage : public testing::Test {
 protected:
  StatusItemStage() {
    options_.processRoot = bus_.directory() + "/proc";
    panelConnection_ = connect();
    portalConnection_ = connect();
  }

  std::unique_ptr<BusConnection> connect() {
    auto made = std::make_unique<BusConnection>(loop_.raw(), *queue_, bus_.address());
    made->open();
    return made;
  }

  // The panel's process: this one, under the name that the test chooses.
  void namePanel(const std::string& name) {
    const std::string directory = options_.processRoot + "/" + std::to_string(::getpid());
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/comm") << name << '\n';
  }

  void startPanel(const std::string& name, ScriptedPanel::Script script = {}) {
    namePanel(name);
    panel_ = std::make_unique<ScriptedPanel>(*panelConnection_, script);
  }

  void startItem() {
    itemConnection_ = std::make_unique<BusConnection>(loop_.raw(), *queue_, bus_.address());
    item_ = std::make_unique<LinuxStatusItem>(
        *itemConnection_, *queue_, engine_, options_,
        [this](StatusItemSituation situation) { situations_.push_back(situation); });
    itemConnection_->open();
  }

  bool until(const std::function<bool()>& isDone) { return runUntil(loop_, isDone); }
  bool untilRegistered(std::size_t count = 1) {
    return until([this, count] { return panel_->items().size() == count; });
  }
  bool untilShown() {
    return until([this] {
      return !situations_.empty() && situations_.back() == StatusItemSituation::shown;
    });
  }

  // What the item that registered `back` before the latest answers now. Signals that were sent
  // before have arrived with it.
  ItemProperties ask(std::size_t back = 0) {
    panel_->ask(back);
    EXPECT_TRUE(until([this] { return panel_->properties.has_value(); }));
    return panel_->properties.value_or(ItemProperties{});
  }

  using Strings = std::vector<std::string>;
  using Situations = std::vector<StatusItemSituation>;

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  PrivateBus bus_;
  UvLoop loop_;
  BlockTextEngine engine_;
  LinuxStatusItem::Options options_;
  Situations situations_;
  std::unique_ptr<BusConnection> panelConnection_;
  std::unique_ptr<BusConnection> portalConnection_;
  std::unique_ptr<BusConnection> itemConnection_;
  std::unique_ptr<ScriptedPortal> portal_;
  std::unique_ptr<ScriptedPanel> panel_;
  std::unique_ptr<LinuxStatusItem> item_;
};

}  // namespace vantora::test
