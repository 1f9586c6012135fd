// SPDX-License-Identifier: MIT
//
// One conversation with the Codex CLI, as the quota provider sees it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>

#include "quota/assistant_executable.hpp"
#include "quota/quota_client.hpp"

namespace vantora {

namespace codex_result {
/// The CLI is logged in with something other than a ChatGPT account.
struct UnsupportedAccount {
  bool operator==(const UnsupportedAccount&) const = default;
};
/// The account or a policy refused the request.
struct PermissionDenied {
  bool operator==(const PermissionDenied&) const = default;
};
}  // namespace codex_result

/// NeedsAuthentication also means that the browser login did not succeed.
using CodexClientResult =
    std::variant<quota_result::Answer, quota_result::Failure, quota_result::NeedsAuthentication,
                 codex_result::UnsupportedAccount, codex_result::PermissionDenied,
                 quota_result::UnsupportedVersion, quota_result::Cancelled>;

enum class CodexClientMode {
  read,   ///< Check the existing session and read the limits.
  login,  ///< Log in through the browser first, then read the limits.
};

/// Makes a client that runs `executable`. Both callbacks run on the main thread: `onLoginURL` (may
/// be empty) with the validated login page, at most once and in mode `login` only; `completion`
/// exactly once while the client is kept.
using CodexClientFactory = std::function<std::shared_ptr<QuotaClient>(
    const AssistantExecutable& executable, CodexClientMode mode,
    std::function<void(std::string url)> onLoginURL,
    std::function<void(CodexClientResult)> completion)>;

}  // namespace vantora
