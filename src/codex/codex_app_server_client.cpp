// SPDX-License-Identifier: MIT
#include "codex/codex_app_server_client.hpp"

#include <utility>

namespace vantora {

CodexAppServerClient::CodexAppServerClient(ConversationHost host, std::string executable,
                                           CodexClientMode mode, LoginURL onLoginURL,
                                           ProcessStarted onProcessStarted, Completion completion)
    : OneAnswerClient(std::move(host), std::move(onProcessStarted), std::move(completion)),
      executable_(std::move(executable)),
      onLoginURL_(std::move(onLoginURL)),
      exchange_(mode) {}

void CodexAppServerClient::launch() {
  const ChildProcessOptions options{executable_, {"app-server", "--stdio"}, {}, workingDirectory()};
  LineConversation::Events events;
  events.onLine = guarded([this](std::string_view line) { perform(exchange_.take(line)); });
  events.onOverLimit = guarded([this] { fail("Resposta do App Server acima do limite."); });
  events.onOutputEnd = guarded([this] { fail("O App Server fechou a saída."); });
  events.onExit = guarded([this] { fail("O processo auxiliar encerrou antes de responder."); });
  events.onInputLost =
      guarded([this] { fail("O App Server fechou a entrada antes da consulta."); });
  if (!startChild(options, std::move(events))) {
    fail("Não foi possível iniciar o executável Codex selecionado.");
    return;
  }
  perform(exchange_.begin());
}

void CodexAppServerClient::perform(CodexStep step) {
  for (std::string& message : step.messages) {
    if (!conversation().send(std::move(message))) {
      fail("O App Server fechou a entrada antes da consulta.");
      return;
    }
  }
  if (step.deadline) {
    setDeadline(*step.deadline, [this] { fail("Tempo limite do App Server excedido."); });
  }
  if (step.loginURL && onLoginURL_) {
    postToMain([this, url = std::move(*step.loginURL)] { onLoginURL_(url); });
  }
  if (step.result) {
    finish(std::move(*step.result));
  }
}

void CodexAppServerClient::fail(const char* text) {
  finish(codex_result::Failure{text});
}

}  // namespace vantora
