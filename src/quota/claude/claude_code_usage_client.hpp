// SPDX-License-Identifier: MIT
//
// Asks the installed Claude Code for the account's usage, once: one short-lived child process in
// SDK streaming mode. ClaudeControl decides what is said; the process, the deadline and the result
// are handled here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quota/claude/claude_client.hpp"
#include "quota/one_answer_client.hpp"

namespace vantora {

class ClaudeCodeUsageClient final : public OneAnswerClient<ClaudeClientResult> {
 public:
  /// For the whole exchange.
  static constexpr Seconds usualTimeout{45};
  /// How long an answer, or the rest of standard error, may still arrive after the child closed
  /// its output or ended.
  static constexpr Seconds endGrace{0.3};
  /// How many bytes of the end of standard error are kept.
  static constexpr std::size_t maxErrorTail = 4'096;

  /// `onProcessStarted` may be empty. The callbacks run on the host's queue. Starts nothing.
  ClaudeCodeUsageClient(ConversationHost host, AssistantExecutable executable, Seconds timeout,
                        ProcessStarted onProcessStarted, Completion completion);

 private:
  void begin() override;
  void takeLine(std::string_view line) override;
  void takeErrorOutput(std::string_view bytes) override;
  void onOutputEnd() override;
  void onExit() override;
  void onFinish() override;
  void ask(std::optional<std::string> request);
  void finishWithoutAnswer(const char* text);

  Seconds timeout_;
  std::string errorTail_;
  std::vector<TimerHandle> endChecks_;
};

}  // namespace vantora
