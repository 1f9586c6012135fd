// SPDX-License-Identifier: MIT
//
// The two quota clients as columns of one table: what their common tests need to know of each.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quota/claude/claude_code_usage_client.hpp"
#include "quota/claude/claude_control.hpp"
#include "quota/codex/codex_app_server_client.hpp"

namespace vantora::test {

struct CodexClientCase {
  using Client = CodexAppServerClient;
  using Result = CodexClientResult;
  static constexpr const char* couldNotStart =
      "Não foi possível iniciar o executável Codex selecionado.";
  static constexpr const char* inputClosed = "O App Server fechou a entrada antes da consulta.";
  static constexpr const char* overLimit = "Resposta do App Server acima do limite.";
  static constexpr const char* late = "Tempo limite do App Server excedido.";
  static constexpr const char* outputClosed = "O App Server fechou a saída.";
  static constexpr const char* exited = "O processo auxiliar encerrou antes de responder.";
  static constexpr const char* answer = R"({"rateLimits":null})";
  static constexpr Seconds deadline{10};  ///< for a child that says nothing
  static constexpr Seconds endGrace{0};
  /// How many lines the child is sent before it speaks.
  static constexpr const char* openingLines = "1";

  static std::vector<std::string> arguments() { return {"app-server", "--stdio"}; }
  static std::map<std::string, std::string> environment() { return {}; }
  /// What a child says to each line that it is sent, up to the answer.
  static std::vector<std::string> script() {
    return {R"({"id":1,"result":{}})", "", R"({"id":2,"result":{"account":{"type":"chatgpt"}}})",
            R"({"id":3,"result":{"rateLimits":null}})"};
  }
  static std::shared_ptr<Client> make(ConversationHost host, const AssistantExecutable& executable,
                                      Client::ProcessStarted onProcessStarted,
                                      Client::Completion completion) {
    return std::make_shared<Client>(std::move(host), executable, CodexClientMode::read, nullptr,
                                    std::move(onProcessStarted), std::move(completion));
  }
};

struct ClaudeClientCase {
  using Client = ClaudeCodeUsageClient;
  using Result = ClaudeClientResult;
  static constexpr const char* couldNotStart = "Não foi possível iniciar o executável claude.";
  static constexpr const char* inputClosed = "O Claude Code não aceitou a consulta.";
  static constexpr const char* overLimit = "Resposta do Claude Code acima do limite.";
  static constexpr const char* late = "Tempo limite do Claude Code excedido.";
  static constexpr const char* outputClosed = "O Claude Code fechou a saída antes de responder.";
  static constexpr const char* exited = "O Claude Code encerrou antes de responder.";
  static constexpr const char* answer = R"({"rate_limits":null})";
  static constexpr Seconds deadline{45};
  static constexpr Seconds endGrace{0.3};
  static constexpr const char* openingLines = "2";

  static std::vector<std::string> arguments() {
    return {ClaudeControl::arguments.begin(), ClaudeControl::arguments.end()};
  }
  static std::map<std::string, std::string> environment() {
    return {{"DISABLE_AUTOUPDATER", "1"}, {"DISABLE_TELEMETRY", "1"}};
  }
  static std::vector<std::string> script() {
    const auto response = [](const char* id, const char* body) {
      return std::string(R"({"type":"control_response","response":{"request_id":")") + id +
             R"(","subtype":"success","response":)" + body + "}}";
    };
    return {response("vantora-initialize", "{}"), response("vantora-usage", answer)};
  }
  static std::shared_ptr<Client> make(ConversationHost host, const AssistantExecutable& executable,
                                      Client::ProcessStarted onProcessStarted,
                                      Client::Completion completion) {
    return std::make_shared<Client>(std::move(host), executable, Client::usualTimeout,
                                    std::move(onProcessStarted), std::move(completion));
  }
};

/// The columns of the tests that both clients pass.
using ClientCases = testing::Types<CodexClientCase, ClaudeClientCase>;
struct ClientCaseNames {
  template <typename Case>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<Case, CodexClientCase> ? "Codex" : "Claude";
  }
};

}  // namespace vantora::test
