// SPDX-License-Identifier: MIT
#include "quota/claude/claude_code_usage_client.hpp"

#include <utility>

#include "quota/claude/claude_control.hpp"

namespace vantora {
namespace {

ClientForm form() {
  return {.arguments = {ClaudeControl::arguments.begin(), ClaudeControl::arguments.end()},
          .environmentChanges = ClaudeControl::environmentChanges(),
          .couldNotStart = "Não foi possível iniciar o executável claude.",
          .inputClosed = "O Claude Code não aceitou a consulta.",
          .overLimit = "Resposta do Claude Code acima do limite.",
          .deadlinePassed = "Tempo limite do Claude Code excedido."};
}

}  // namespace

ClaudeCodeUsageClient::ClaudeCodeUsageClient(ConversationHost host, AssistantExecutable executable,
                                             Seconds timeout, ProcessStarted onProcessStarted,
                                             Completion completion)
    : OneAnswerClient(std::move(host), std::move(executable), form(), std::move(onProcessStarted),
                      std::move(completion)),
      timeout_(timeout) {}

void ClaudeCodeUsageClient::begin() {
  ask(ClaudeControl::initializeRequest());
  ask(ClaudeControl::usageRequest());
  setDeadline(timeout_);
}

void ClaudeCodeUsageClient::ask(std::optional<std::string> request) {
  if (request) {
    (void)send(std::move(*request));
  } else {
    fail("Falha interna de serialização.");
  }
}

void ClaudeCodeUsageClient::takeLine(std::string_view line) {
  if (auto result = ClaudeControl::readLine(line)) {
    finish(std::move(*result));
  }
}

void ClaudeCodeUsageClient::takeErrorOutput(std::string_view bytes) {
  errorTail_.append(bytes);
  if (errorTail_.size() > maxErrorTail) {
    errorTail_.erase(0, errorTail_.size() - maxErrorTail);
  }
}

void ClaudeCodeUsageClient::onOutputEnd() {
  finishWithoutAnswer("O Claude Code fechou a saída antes de responder.");
}

void ClaudeCodeUsageClient::onExit() {
  finishWithoutAnswer("O Claude Code encerrou antes de responder.");
}

// The end of the output and the end of the child are both reported, in either order; the check
// that runs first decides.
void ClaudeCodeUsageClient::finishWithoutAnswer(const char* text) {
  endChecks_.push_back(runAfter(endGrace, [this, text] {
    if (ClaudeControl::reportsMissingLogin(errorTail_)) {
      finish(quota_result::NeedsAuthentication{});
    } else {
      fail(text);
    }
  }));
}

void ClaudeCodeUsageClient::onFinish() {
  endChecks_.clear();
  errorTail_ = {};
}

}  // namespace vantora
