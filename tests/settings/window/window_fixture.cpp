// SPDX-License-Identifier: MIT
#include "settings/window/window_fixture.hpp"

namespace vantora::test {

WindowTest::WindowTest() {
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

WindowTest::~WindowTest() = default;

void WindowTest::tell(WindowFields fields) {
  ASSERT_TRUE(
      model_->receive(SettingsProtocol::stateLine(agent_, {++sequence_, revision_, fields})));
  settle();
}

void WindowTest::settle() {
  for (int round = 0; round < 5; ++round) {
    QApplication::processEvents();
  }
}

std::vector<SettingsProtocol::WindowMessage> WindowTest::sent() {
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

AppConfiguration WindowTest::sentConfiguration() {
  const auto messages = sent();
  EXPECT_TRUE(std::any_of(messages.begin(), messages.end(), [](const auto& message) {
    return std::holds_alternative<SettingsProtocol::NewConfiguration>(message);
  }));
  return agent_.configuration;
}

std::vector<ModuleRow*> WindowTest::rows() {
  std::vector<ModuleRow*> found;
  for (auto* widget : page(0)->findChildren<QWidget*>()) {
    if (auto* row = dynamic_cast<ModuleRow*>(widget)) {
      found.push_back(row);
    }
  }
  return found;
}

QString WindowTest::texts(int tab) {
  QString all;
  for (const auto* label : page(tab)->findChildren<QLabel*>()) {
    if (label->isVisibleTo(page(tab))) {
      all += label->text().remove(QLatin1Char('&')) + QLatin1Char('\n');
    }
  }
  return all;
}

}  // namespace vantora::test
