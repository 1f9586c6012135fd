// SPDX-License-Identifier: MIT
#include "claude/claude_code_usage_client.hpp"

#include <utility>

#include "claude/claude_control.hpp"

namespace vantora {

ClaudeCodeUsageClient::ClaudeCodeUsageClient(ConversationHost host, std::string executable,
                                             Seconds timeout, ProcessStarted onProcessStarted,
                                             Completion completion)
    : OneAnswerClient(std::move(host), std::move(onProcessStarted), std::move(completion)),
      executable_(std::move(executable)),
      timeout_(timeout) {}

void ClaudeCodeUsageClient::launch() {
  const ChildProcessOptions options{
      executable_,
      {ClaudeControl::arguments.begin(), ClaudeControl::arguments.end()},
      ClaudeControl::environmentChanges(),
      workingDirectory()};
  LineConversation::Events events;
  events.onLine = guarded([this](std::string_view line) { takeLine(line); });
  events.onOverLimit = guarded([this] { fail("Resposta do Claude Code acima do limite."); });
  events.onOutputEnd =
      guarded([this] { finishWithoutAnswer("O Claude Code fechou a saída antes de responder."); });
  events.onExit =
      guarded([this] { finishWithoutAnswer("O Claude Code encerrou antes de responder."); });
  events.onInputLost = guarded([this] { fail("O Claude Code não aceitou a consulta."); });
  events.onErrorOutput = guarded([this](std::string_view bytes) { takeErrorOutput(bytes); });
  if (!startChild(options, std::move(events))) {
    fail("Não foi possível iniciar o executável claude.");
    return;
  }
  send(ClaudeControl::initializeRequest());
  send(ClaudeControl::usageRequest());
  setDeadline(timeout_, [this] { fail("Tempo limite do Claude Code excedido."); });
}

void ClaudeCodeUsageClient::send(std::optional<std::string> request) {
  if (!request) {
    fail("Falha interna de serialização.");
  } else if (!conversation().send(std::move(*request))) {
    fail("O Claude Code não aceitou a consulta.");
  }
}

void ClaudeCodeUsageClient::takeLine(std::string_view line) {
  if (auto result = ClaudeControl::readLine(line)) {
    finish(std::move(*result));
  }
}

void ClaudeCodeUsageClient::takeErrorOutput(std::string_view bytes) {
  errorTail_.append(bytes);
  if (errorTail_.size() > errorTailSize) {
    errorTail_.erase(0, errorTail_.size() - errorTailSize);
  }
}

// The end of the output and the end of the child are both told, in either order; the
// check that runs first decides.
void ClaudeCodeUsageClient::finishWithoutAnswer(const char* text) {
  endChecks_.push_back(queue().runAfter(endGrace, Seconds{0}, guarded([this, text] {
                                          if (ClaudeControl::tellsOfLogin(errorTail_)) {
                                            finish(claude_result::NeedsAuthentication{});
                                          } else {
                                            fail(text);
                                          }
                                        })));
}

void ClaudeCodeUsageClient::onFinish() {
  endChecks_.clear();
  errorTail_ = {};
}

void ClaudeCodeUsageClient::fail(const char* text) {
  finish(claude_result::Failure{text});
}

}  // namespace vantora
