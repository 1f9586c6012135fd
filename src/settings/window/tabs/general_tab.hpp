// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QLabel>

#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

/// "Geral": pause, start with the session, export and import, defaults, and the notice.
class GeneralTab final : public SettingsTab {
 public:
  explicit GeneralTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  void showLoginItem();
  void askToRestore();

  Form<AppConfiguration> form_;
  QCheckBox* startAtLogin_;
  QLabel* notice_;
};

}  // namespace vantora
