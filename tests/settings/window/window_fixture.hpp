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

/// The real window without a screen, with the test in the agent's place. The program's
/// main makes the application.
class WindowTest : public testing::Test {
 protected:
  WindowTest() {
    model_.emplace([this](std::string_view line) { lines_.emplace_back(line); }, panels_);
    agent_.configuration.modules[0].gapAfter = 12;
    agent_.configuration.modules[2].top = MetricID::fan1RPM;
    agent_.picture = {40, 1, 2, 1, {255, 0}, std::nullopt};
    view_.emplace(*model_);
    tellAll();
    view_->show();
    QApplication::processEvents();
    (void)sent();
  }

  void tell(WindowFields fields) {
    ASSERT_TRUE(
        model_->receive(SettingsProtocol::stateLine(agent_, {++sequence_, revision_, fields})));
    settle();
  }
  // Layouts call for layouts.
  static void settle() {
    for (int round = 0; round < 5; ++round) {
      QApplication::processEvents();
    }
  }
  void tellAll() { tell(allWindowFields); }

  // What the window sent since the last time, without its answers to the states.
  std::vector<SettingsProtocol::WindowMessage> sent() {
    std::vector<SettingsProtocol::WindowMessage> messages;
    for (const std::string& line : std::exchange(lines_, {})) {
      const auto message = SettingsProtocol::readWindowLine(line);
      EXPECT_TRUE(message) << line;
      if (message && !std::holds_alternative<SettingsProtocol::Seen>(*message)) {
        messages.push_back(*message);
      }
      if (message && std::holds_alternative<SettingsProtocol::NewConfiguration>(*message)) {
        const auto& change = std::get<SettingsProtocol::NewConfiguration>(*message);
        agent_.configuration = change.configuration;
        revision_ = change.revision;
      }
    }
    return messages;
  }
  // The last configuration that was sent; the agent takes it over.
  AppConfiguration sentConfiguration() {
    const auto messages = sent();
    EXPECT_TRUE(std::any_of(messages.begin(), messages.end(), [](const auto& message) {
      return std::holds_alternative<SettingsProtocol::NewConfiguration>(message);
    }));
    return agent_.configuration;
  }
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
  std::vector<ModuleRow*> rows() {
    std::vector<ModuleRow*> found;
    for (auto* widget : page(0)->findChildren<QWidget*>()) {
      if (auto* row = dynamic_cast<ModuleRow*>(widget)) {
        found.push_back(row);
      }
    }
    return found;
  }
  QWidget* page(int tab) { return view_->findChild<QTabWidget*>()->widget(tab); }
  // Every text that a tab shows, one a line.
  QString texts(int tab) {
    QString all;
    for (const auto* label : page(tab)->findChildren<QLabel*>()) {
      if (label->isVisibleTo(page(tab))) {
        all += label->text().remove(QLatin1Char('&')) + QLatin1Char('\n');
      }
    }
    return all;
  }

  FakePanels panels_;
  std::vector<std::string> lines_;
  std::optional<WindowModel> model_;
  WindowState agent_;
  std::optional<SettingsView> view_;
  std::uint64_t sequence_ = 0;
  std::uint64_t revision_ = 0;
};

}  // namespace vantora::test
