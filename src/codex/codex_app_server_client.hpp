// SPDX-License-Identifier: MIT
//
// Runs one conversation with the Codex CLI's App Server: `codex app-server --stdio`.
// What is said is CodexExchange's; here are the process, the deadlines and the result.
#pragma once

#include <string>
#include <string_view>

#include "codex/codex_client.hpp"
#include "codex/codex_exchange.hpp"
#include "runtime/one_answer_client.hpp"

namespace vantora {

class CodexAppServerClient final : public OneAnswerClient<CodexClient, CodexClientResult> {
 public:
  using LoginURL = std::function<void(std::string url)>;

  /// `executable` is an absolute path. `onLoginURL` and `onProcessStarted` may be empty.
  /// All callbacks run on the host's main queue. Starts nothing.
  CodexAppServerClient(ConversationHost host, std::string executable, CodexClientMode mode,
                       LoginURL onLoginURL, ProcessStarted onProcessStarted, Completion completion);

 private:
  void launch() override;
  [[nodiscard]] CodexClientResult cancelledAnswer() const override {
    return codex_result::Cancelled{};
  }
  void perform(CodexStep step);
  void fail(const char* text);

  std::string executable_;
  LoginURL onLoginURL_;
  CodexExchange exchange_;
};

}  // namespace vantora
