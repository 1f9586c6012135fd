// SPDX-License-Identifier: MIT
#pragma once

#include "settings/window/quota/quota_actions.hpp"
#include "settings/window/quota/quota_lines.hpp"
#include "settings/window/tabs/settings_tab.hpp"

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
  QuotaLines lines_{"Codex CLI"};
  MissingModule* missing_;
  QPushButton* refresh_;
  QPushButton* connect_;
  QComboBox* category_;
};

}  // namespace vantora
