// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "settings/window/modules/module_row.hpp"
#include "settings/window/settings_view.hpp"
#include "support/fake_file_panels.hpp"

namespace vantora::test {

/// The tabs, which are told apart by their places.
enum Tab { modulesTab, appearanceTab, samplingTab, codexTab, claudeTab, generalTab };

/// The real window without a screen, with the test in the agent's place. The program's
/// main makes the application.
class WindowTest : public testing::Test {
 protected:
  WindowTest();
  ~WindowTest() override;
  WindowTest(const WindowTest&) = delete;
  WindowTest& operator=(const WindowTest&) = delete;

  void tell(WindowFields fields);
  // Layouts call for layouts.
  static void settle();
  void tellAll() { tell(allWindowFields); }

  // What the window sent since the last time, without its answers to the states.
  std::vector<SettingsProtocol::WindowMessage> sent();
  // The last configuration that was sent; the agent takes it over.
  AppConfiguration sentConfiguration();
  template <typename Message>
  std::optional<Message> sentOne() {
    const auto messages = sent();
    if (messages.size() != 1 || !std::holds_alternative<Message>(messages[0])) {
      ADD_FAILURE() << messages.size() << " messages";
      return std::nullopt;
    }
    return std::get<Message>(messages[0]);
  }

  // The one control of the tab with this accessible name.
  template <typename Control>
  Control* control(int tab, const QString& name) {
    view_->setCurrentTab(tab);
    QApplication::processEvents();
    Control* found = nullptr;
    for (auto* candidate : page(tab)->findChildren<Control*>()) {
      if (candidate->accessibleName() == name && candidate->isVisibleTo(page(tab))) {
        EXPECT_EQ(found, nullptr) << "twice: " << name.toStdString();
        found = candidate;
      }
    }
    EXPECT_NE(found, nullptr) << name.toStdString();
    return found;
  }
  // The rows of the modules, in no order.
  std::vector<ModuleRow*> rows();
  QWidget* page(int tab) { return view_->findChild<QTabWidget*>()->widget(tab); }
  // Every text that a tab shows, one a line.
  QString texts(int tab);

  FakePanels panels_;
  std::vector<std::string> lines_;
  std::optional<WindowModel> model_;
  WindowState agent_;
  std::optional<SettingsView> view_;
  std::uint64_t sequence_ = 0;
  std::uint64_t revision_ = 0;
};

}  // namespace vantora::test
