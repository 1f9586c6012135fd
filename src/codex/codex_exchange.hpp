// SPDX-License-Identifier: MIT
//
// What is said between us and the Codex App Server, without the process, the pipes and
// the time: lines in, what to do about them out. Newline-delimited JSON-RPC; requests
// carry no version member.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "codex/codex_client.hpp"
#include "model/time.hpp"

namespace vantora {

/// What is to be done, in this order.
struct CodexStep {
  std::vector<std::string> messages;        ///< To send, each as one line.
  std::optional<Seconds> deadline;          ///< From now; replaces the one before.
  std::optional<std::string> loginURL;      ///< A validated login page to tell the owner.
  std::optional<CodexClientResult> result;  ///< The conversation is over.
};

/// One conversation. Nothing may be asked of it once a step carried a result.
class CodexExchange {
 public:
  /// How long the App Server may take over an answer, over the limits, and the user over
  /// the login in the browser.
  static constexpr Seconds answerDeadline{10};
  static constexpr Seconds limitsDeadline{20};
  static constexpr Seconds loginDeadline{300};

  explicit CodexExchange(CodexClientMode mode) : mode_(mode) {}

  /// What to say first; once.
  [[nodiscard]] CodexStep begin();
  /// A line of the App Server's, without its line feed.
  [[nodiscard]] CodexStep take(std::string_view line);

 private:
  enum class Stage { initialize, account, limits, loginStart, awaitLogin };
  class Message;

  [[nodiscard]] CodexStep takeResponse(const Message& message);
  [[nodiscard]] CodexStep takeNotification(const Message& message);
  [[nodiscard]] CodexStep afterInitialize();
  [[nodiscard]] CodexStep askForAccount();
  [[nodiscard]] CodexStep afterAccount(const Message& message);
  [[nodiscard]] CodexStep afterLoginStart(const Message& message);

  CodexClientMode mode_;
  Stage stage_ = Stage::initialize;
  std::string loginId_;
};

}  // namespace vantora
