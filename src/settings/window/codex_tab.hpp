// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

#include "settings/window/quota_actions.hpp"
#include "settings/window/settings_tab.hpp"

namespace vantora {

/// "Codex semanal": the Codex integration, its state and its settings.
class CodexTab final : public SettingsTab {
 public:
  explicit CodexTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  void showCategories();
  void showActions();

  Form<CodexQuotaSettings> form_;
  QLabel* message_;
  QLabel* lastSuccess_;
  QLabel* executable_;
  MissingModule* missing_;
  QPushButton* refresh_;
  QPushButton* connect_;
  QComboBox* category_;
};

}  // namespace vantora
