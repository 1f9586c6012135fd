// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

#include "settings/window/settings_tab.hpp"

namespace vantora {

/// "Coleta": interval and network interface, and what the readings mean.
class SamplingTab final : public SettingsTab {
 public:
  explicit SamplingTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  Form<AppConfiguration> form_;
  QLabel* interface_;
};

}  // namespace vantora
