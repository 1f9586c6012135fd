// SPDX-License-Identifier: MIT
//
// The two quota providers with their real clients: what is the same on every system. A
// system says where conversations take place and where the executables may be.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quota/claude/claude_quota_provider.hpp"
#include "quota/codex/codex_quota_provider.hpp"
#include "quota/one_answer_client.hpp"
#include "runtime/clock.hpp"
#include "settings/user_defaults.hpp"

namespace vantora {

/// Looks for the user's choice first, which `defaults` may hold. Both, and all that the
/// host refers to, outlive the provider. `places` are absolute paths, the best first.
[[nodiscard]] std::unique_ptr<CodexQuotaProvider> makeCodexQuotaProvider(
    const ConversationHost& host, const Clock& clock, UserDefaults& defaults,
    std::vector<std::string> places);

/// As above, without a choice of the user's.
[[nodiscard]] std::unique_ptr<ClaudeQuotaProvider> makeClaudeQuotaProvider(
    const ConversationHost& host, const Clock& clock, std::vector<std::string> places);

}  // namespace vantora
