// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

#include "settings/window/readings/status_preview.hpp"
#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

/// "Aparência": spacing of the picture, the module of a panel's square, the width and the picture
/// itself.
class AppearanceTab final : public SettingsTab {
 public:
  explicit AppearanceTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  void showSquare();

  Form<AppConfiguration> form_;
  QFormLayout* rows_;
  QComboBox* square_;   // seen only where the panel keeps one square
  QLabel* squareNote_;  // the same
  QLabel* width_;
  QLabel* warning_;
  StatusPreview* preview_;
  QLabel* caption_;
};

}  // namespace vantora
