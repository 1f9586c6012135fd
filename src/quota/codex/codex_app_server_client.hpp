// SPDX-License-Identifier: MIT
//
// Runs one conversation with the Codex CLI's App Server: `codex app-server --stdio`. CodexExchange
// decides what is said; the process, the deadlines and the result are handled here.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "quota/codex/codex_client.hpp"
#include "quota/codex/codex_exchange.hpp"
#include "quota/one_answer_client.hpp"

namespace vantora {

class CodexAppServerClient final : public OneAnswerClient<CodexClientResult> {
 public:
  using LoginURL = std::function<void(std::string url)>;

  /// `onLoginURL` and `onProcessStarted` may be empty. All callbacks run on the host's queue.
  /// Starts nothing.
  CodexAppServerClient(ConversationHost host, AssistantExecutable executable, CodexClientMode mode,
                       LoginURL onLoginURL, ProcessStarted onProcessStarted, Completion completion);

 private:
  void begin() override { perform(exchange_.begin()); }
  void takeLine(std::string_view line) override { perform(exchange_.take(line)); }
  void onOutputEnd() override;
  void onExit() override;
  void perform(CodexStep step);

  LoginURL onLoginURL_;
  CodexExchange exchange_;
};

}  // namespace vantora
