// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

#include "settings/window/window_fixture.hpp"

namespace vantora::test {

/// The settings of a quota, which the configuration may lack.
inline CodexQuotaSettings& codex(AppConfiguration& configuration) {
  if (!configuration.codexSettings) {
    configuration.codexSettings.emplace();
  }
  return *configuration.codexSettings;
}
inline ClaudeQuotaSettings& claude(AppConfiguration& configuration) {
  if (!configuration.claudeSettings) {
    configuration.claudeSettings.emplace();
  }
  return *configuration.claudeSettings;
}

/// The whole window, with buttons to click.
class TabsFixture : public WindowTest {
 protected:
  void click(Tab tab, const char* name) {
    control<QPushButton>(tab, QString::fromUtf8(name))->click();
  }
};

}  // namespace vantora::test
