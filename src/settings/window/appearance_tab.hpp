// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

#include "settings/window/settings_tab.hpp"
#include "settings/window/status_preview.hpp"

namespace vantora {

/// "Aparência": spacing of the picture, its width and the picture itself.
class AppearanceTab final : public SettingsTab {
 public:
  explicit AppearanceTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  Form<AppConfiguration> form_;
  QLabel* width_;
  QLabel* warning_;
  StatusPreview* preview_;
  QLabel* caption_;
};

}  // namespace vantora
