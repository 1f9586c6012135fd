// SPDX-License-Identifier: MIT
#pragma once

#include "settings/window/quota/quota_actions.hpp"
#include "settings/window/quota/quota_lines.hpp"
#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

/// "Claude": the Claude integration, its state and its settings.
class ClaudeTab final : public SettingsTab {
 public:
  explicit ClaudeTab(WindowModel& model);
  void refresh(WindowFields fields) override;

 private:
  Form<ClaudeQuotaSettings> form_;
  QuotaLines lines_{"Claude Code"};
  MissingModule* missing_;
  QPushButton* refresh_;
};

}  // namespace vantora
