// SPDX-License-Identifier: MIT
#include "quota/codex/codex_app_server_client.hpp"

#include <utility>

namespace vantora {
namespace {

ClientForm form() {
  return {.arguments = {"app-server", "--stdio"},
          .couldNotStart = "Não foi possível iniciar o executável Codex selecionado.",
          .inputClosed = "O App Server fechou a entrada antes da consulta.",
          .overLimit = "Resposta do App Server acima do limite.",
          .deadlinePassed = "Tempo limite do App Server excedido."};
}

}  // namespace

void CodexAppServerClient::onOutputEnd() {
  fail("O App Server fechou a saída.");
}

void CodexAppServerClient::onExit() {
  fail("O processo auxiliar encerrou antes de responder.");
}

void CodexAppServerClient::perform(CodexStep step) {
  for (std::string& message : step.messages) {
    if (!send(std::move(message))) {
      return;
    }
  }
  if (step.deadline) {
    setDeadline(*step.deadline);
  }
  if (step.loginURL && onLoginURL_) {
    post([this, url = std::move(*step.loginURL)] { onLoginURL_(url); });
  }
  if (step.result) {
    finish(std::move(*step.result));
  }
}

CodexAppServerClient::CodexAppServerClient(ConversationHost host, AssistantExecutable executable,
                                           CodexClientMode mode, LoginURL onLoginURL,
                                           ProcessStarted onProcessStarted, Completion completion)
    : OneAnswerClient(std::move(host), std::move(executable), form(), std::move(onProcessStarted),
                      std::move(completion)),
      onLoginURL_(std::move(onLoginURL)),
      exchange_(mode) {}

}  // namespace vantora
