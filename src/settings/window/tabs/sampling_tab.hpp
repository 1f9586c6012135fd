// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

#include "settings/window/controls/link_picker.hpp"
#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

/// "Coleta": interval and network interface, and what the readings mean.
class SamplingTab final : public SettingsTab {
 public:
  explicit SamplingTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  Form<AppConfiguration> form_;
  void showMissing();

  LinkPicker* link_;
  QLabel* missing_;
  QLabel* interface_;
};

}  // namespace vantora
