// SPDX-License-Identifier: MIT
//
// One usage question to Claude Code, as the quota provider sees it: it starts, it ends
// with exactly one result. A new query is a new client.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace vantora {

namespace claude_result {
/// The usage answer, as compact JSON.
struct Usage {
  std::string json;
  bool operator==(const Usage&) const = default;
};
/// A Portuguese sentence for the user, with its full stop.
struct Failure {
  std::string text;
  bool operator==(const Failure&) const = default;
};
/// Claude Code has no usable login.
struct NeedsAuthentication {
  bool operator==(const NeedsAuthentication&) const = default;
};
/// This version of Claude Code does not know the usage request.
struct UnsupportedVersion {
  bool operator==(const UnsupportedVersion&) const = default;
};
/// The owner called cancel().
struct Cancelled {
  bool operator==(const Cancelled&) const = default;
};
}  // namespace claude_result

using ClaudeClientResult =
    std::variant<claude_result::Usage, claude_result::Failure, claude_result::NeedsAuthentication,
                 claude_result::UnsupportedVersion, claude_result::Cancelled>;

/// Made and used on the main thread. May be dropped at any time, also inside its own
/// completion: the child process is then ended all the same.
class ClaudeClient {
 public:
  virtual ~ClaudeClient() = default;

  /// Asks; once. Returns at once and reports only by the completion, which never runs
  /// inside this call.
  virtual void start() = 0;

  /// Ends the query with Cancelled. Does nothing once a result is decided.
  virtual void cancel() = 0;
};

/// Makes a client that runs `executable` (absolute path) with its usual deadline.
/// `completion` runs exactly once, on the main thread, while the client is kept.
using ClaudeClientFactory = std::function<std::shared_ptr<ClaudeClient>(
    std::string executable, std::function<void(ClaudeClientResult)> completion)>;

}  // namespace vantora
