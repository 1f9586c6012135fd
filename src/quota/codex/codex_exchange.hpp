// SPDX-License-Identifier: MIT
//
// The protocol with the Codex App Server, without process, pipes and time: lines in, steps out.
// Newline-delimited JSON-RPC; requests carry no version member.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/time.hpp"
#include "quota/codex/codex_client.hpp"

namespace vantora {

/// What the client must do, in this order.
struct CodexStep {
  std::vector<std::string> messages;        ///< To send, each as one line.
  std::optional<Seconds> deadline;          ///< From now; replaces the one before.
  std::optional<std::string> loginURL;      ///< A validated login page for the owner.
  std::optional<CodexClientResult> result;  ///< The conversation is over.
};

/// One conversation. No call may follow a step that carried a result.
class CodexExchange {
 public:
  /// How long the App Server may take for an answer and for the limits, and the user for the login
  /// in the browser.
  static constexpr Seconds answerDeadline{10};
  static constexpr Seconds limitsDeadline{20};
  static constexpr Seconds loginDeadline{300};

  explicit CodexExchange(CodexClientMode mode) : mode_(mode) {}

  /// The first step; once.
  [[nodiscard]] CodexStep begin();
  /// The step for a line from the App Server, without its line feed.
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
