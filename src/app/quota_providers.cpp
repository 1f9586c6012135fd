// SPDX-License-Identifier: MIT
#include "app/quota_providers.hpp"

#include <optional>
#include <utility>

#include "quota/assistant_executable.hpp"
#include "quota/claude/claude_code_usage_client.hpp"
#include "quota/codex/codex_app_server_client.hpp"

namespace vantora {

std::unique_ptr<CodexQuotaProvider> makeCodexQuotaProvider(const ConversationHost& host,
                                                           const Clock& clock,
                                                           UserDefaults& defaults,
                                                           std::vector<std::string> places) {
  return std::make_unique<CodexQuotaProvider>(CodexQuotaProvider::Ports{
      .mainQueue = host.queue,
      .clock = clock,
      .makeClient =
          [host](const AssistantExecutable& executable, CodexClientMode mode,
                 CodexAppServerClient::LoginURL onLoginURL,
                 CodexAppServerClient::Completion completion) {
            return std::make_shared<CodexAppServerClient>(
                host, executable, mode, std::move(onLoginURL),
                CodexAppServerClient::ProcessStarted(), std::move(completion));
          },
      .resolveExecutable =
          [&defaults, places = std::move(places)] {
            return resolveAssistant(defaults.text(codexExecutablePathKey), places);
          },
  });
}

std::unique_ptr<ClaudeQuotaProvider> makeClaudeQuotaProvider(const ConversationHost& host,
                                                             const Clock& clock,
                                                             std::vector<std::string> places) {
  return std::make_unique<ClaudeQuotaProvider>(ClaudeQuotaProvider::Ports{
      .mainQueue = host.queue,
      .clock = clock,
      .makeClient =
          [host](const AssistantExecutable& executable,
                 ClaudeCodeUsageClient::Completion completion) {
            return std::make_shared<ClaudeCodeUsageClient>(
                host, executable, ClaudeCodeUsageClient::usualTimeout,
                ClaudeCodeUsageClient::ProcessStarted(), std::move(completion));
          },
      .resolveExecutable =
          [places = std::move(places)] { return resolveAssistant(std::nullopt, places); },
  });
}

}  // namespace vantora
