// SPDX-License-Identifier: MIT
#pragma once

#include "settings/window/tabs/quota_tab.hpp"

namespace vantora {

/// "Claude": the Claude integration, its state and its settings.
struct ClaudeTab final : QuotaTab<ClaudeQuotaSettings> {
  explicit ClaudeTab(WindowModel& model);
};

}  // namespace vantora
