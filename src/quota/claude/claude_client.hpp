// SPDX-License-Identifier: MIT
//
// One usage question to Claude Code, as the quota provider sees it.
#pragma once

#include <functional>
#include <memory>
#include <variant>

#include "quota/assistant_executable.hpp"
#include "quota/quota_client.hpp"

namespace vantora {

using ClaudeClientResult =
    std::variant<quota_result::Answer, quota_result::Failure, quota_result::NeedsAuthentication,
                 quota_result::UnsupportedVersion, quota_result::Cancelled>;

/// Makes a client that runs `executable` with its usual deadline. `completion` runs exactly once,
/// on the main thread, while the client is kept.
using ClaudeClientFactory = std::function<std::shared_ptr<QuotaClient>(
    const AssistantExecutable& executable, std::function<void(ClaudeClientResult)> completion)>;

}  // namespace vantora
