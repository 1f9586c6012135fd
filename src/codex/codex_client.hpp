// SPDX-License-Identifier: MIT
//
// One conversation with the Codex CLI, as the quota provider sees it: it starts, it
// ends with exactly one result. A new query or login is a new client.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace vantora {

namespace codex_result {
/// The rate-limits answer, as compact JSON.
struct Quota {
  std::string json;
  bool operator==(const Quota&) const = default;
};
/// A Portuguese sentence for the user, with its full stop.
struct Failure {
  std::string text;
  bool operator==(const Failure&) const = default;
};
/// The CLI has no usable login, or the browser login did not succeed.
struct NeedsAuthentication {
  bool operator==(const NeedsAuthentication&) const = default;
};
/// The CLI is logged in with something other than a ChatGPT account.
struct UnsupportedAccount {
  bool operator==(const UnsupportedAccount&) const = default;
};
/// The account or a policy refused the request.
struct PermissionDenied {
  bool operator==(const PermissionDenied&) const = default;
};
/// The installed CLI does not offer the required method.
struct UnsupportedVersion {
  bool operator==(const UnsupportedVersion&) const = default;
};
/// The owner called cancel().
struct Cancelled {
  bool operator==(const Cancelled&) const = default;
};
}  // namespace codex_result

using CodexClientResult =
    std::variant<codex_result::Quota, codex_result::Failure, codex_result::NeedsAuthentication,
                 codex_result::UnsupportedAccount, codex_result::PermissionDenied,
                 codex_result::UnsupportedVersion, codex_result::Cancelled>;

enum class CodexClientMode {
  read,   ///< Check the existing session and read the limits.
  login,  ///< Log in through the browser first, then read the limits.
};

/// Made and used on the main thread. May be dropped at any time, also inside its own
/// completion: the child process is then ended all the same.
class CodexClient {
 public:
  virtual ~CodexClient() = default;

  /// Begins the conversation; once. Returns at once and reports only by callbacks, none
  /// of which runs inside this call.
  virtual void start() = 0;

  /// Ends the conversation with Cancelled. Does nothing once a result is decided.
  virtual void cancel() = 0;
};

/// Makes a client that runs `executable` (absolute path). Both callbacks run on the main
/// thread: `onLoginURL` (may be empty) with the validated login page, at most once and
/// in mode `login` only; `completion` exactly once while the client is kept.
using CodexClientFactory = std::function<std::shared_ptr<CodexClient>(
    std::string executable, CodexClientMode mode, std::function<void(std::string url)> onLoginURL,
    std::function<void(CodexClientResult)> completion)>;

}  // namespace vantora
