// SPDX-License-Identifier: MIT
//
// Asks the installed Claude Code for the account's usage, once: one short-lived child
// process in SDK streaming mode. What is said is ClaudeControl's; here are the process,
// the deadline and the result.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "claude/claude_client.hpp"
#include "runtime/one_answer_client.hpp"

namespace vantora {

class ClaudeCodeUsageClient final : public OneAnswerClient<ClaudeClient, ClaudeClientResult> {
 public:
  /// For the whole exchange.
  static constexpr Seconds usualTimeout{45};
  /// How long an answer, or the rest of standard error, may still come after the child
  /// closed its output or ended.
  static constexpr Seconds endGrace{0.3};
  /// How much of the end of standard error is kept.
  static constexpr std::size_t errorTailSize = 4'096;

  /// `executable` is an absolute path. `onProcessStarted` may be empty. The callbacks run
  /// on the host's main queue. Starts nothing.
  ClaudeCodeUsageClient(ConversationHost host, std::string executable, Seconds timeout,
                        ProcessStarted onProcessStarted, Completion completion);

 private:
  void launch() override;
  [[nodiscard]] ClaudeClientResult cancelledAnswer() const override {
    return claude_result::Cancelled{};
  }
  void onFinish() override;
  void send(std::optional<std::string> request);
  void takeLine(std::string_view line);
  void takeErrorOutput(std::string_view bytes);
  void finishWithoutAnswer(const char* text);
  void fail(const char* text);

  std::string executable_;
  Seconds timeout_;
  std::string errorTail_;
  std::vector<TimerHandle> endChecks_;
};

}  // namespace vantora
