// SPDX-License-Identifier: MIT
//
// The item on a bus of its own, with a panel that the test plays.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/panels/status_item_picture.hpp"
#include "platform/linux/status_item/block_text_engine.hpp"
#include "platform/linux/status_item/example_presentation.hpp"
#include "platform/linux/status_item/linux_status_item.hpp"
#include "platform/linux/status_item/scripted_panel.hpp"
#include "platform/linux/status_item/scripted_portal.hpp"
#include "status/rasterise.hpp"
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

  void makeItem() {
    itemConnection_ = std::make_unique<BusConnection>(loop_.raw(), *queue_, bus_.address());
    item_ = std::make_unique<LinuxStatusItem>(
        *itemConnection_, *queue_, engine_, options_,
        [this](StatusItemSituation situation) { situations_.push_back(situation); });
  }
  void startItem() {
    makeItem();
    itemConnection_->open();
  }

  virtual bool until(const std::function<bool()>& isDone) { return runUntil(loop_, isDone); }
  bool untilRegistered(std::size_t count = 1) {
    return until([this, count] { return panel_->items().size() == count; });
  }
  bool untilShown() {
    return until([this] {
      return !situations_.empty() && situations_.back() == StatusItemSituation::shown;
    });
  }

  // The example's readings on a panel, with which the item has registered.
  bool showOn(const std::string& panel) {
    startPanel(panel);
    startItem();
    item_->show(examplePresentation("12%"));
    return untilRegistered();
  }

  // What a panel whose colour is not known is given of a drawing.
  static std::vector<std::uint8_t> onPlate(const AlphaBitmap& drawn, double cornerRadius) {
    std::vector<std::uint8_t> bytes(drawn.pixels.size() * 4);
    tint(drawn, Ink::lightOnPlate, cornerRadius, bytes);
    return bytes;
  }
  // The same of a square of 22 pixels.
  std::vector<std::uint8_t> squareOnPlate(const SquareContent& content) {
    constexpr int side = 22;
    return onPlate(rasterise(squareImage(content, side, engine_), engine_, 1), side / 5.0);
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
