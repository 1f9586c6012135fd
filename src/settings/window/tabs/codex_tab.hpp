// SPDX-License-Identifier: MIT
#pragma once

#include "settings/window/tabs/quota_tab.hpp"

namespace vantora {

/// "Codex semanal": the Codex integration, its state and its settings, with the login and the
/// choice of a category that it alone has.
class CodexTab final : public QuotaTab<CodexQuotaSettings> {
 public:
  explicit CodexTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  void showCategories();
  void showLogin();

  QPushButton* connect_;
  QComboBox* category_;
};

}  // namespace vantora
