// SPDX-License-Identifier: MIT
#include "app/quota_providers.hpp"

#include <optional>
#include <utility>

#include "claude/claude_code_usage_client.hpp"
#include "claude/claude_executable_resolver.hpp"
#include "codex/codex_app_server_client.hpp"
#include "codex/codex_executable_resolver.hpp"

namespace vantora {

std::unique_ptr<CodexQuotaProvider> makeCodexQuotaProvider(const ConversationHost& host,
                                                           const Clock& clock,
                                                           UserDefaults& defaults,
                                                           std::vector<std::string> places) {
  return std::make_unique<CodexQuotaProvider>(CodexQuotaProvider::Ports{
      .mainQueue = host.main,
      .clock = clock,
      .makeClient =
          [host](std::string executable, CodexClientMode mode,
                 CodexAppServerClient::LoginURL onLoginURL,
                 CodexAppServerClient::Completion completion) {
            return std::make_shared<CodexAppServerClient>(
                host, std::move(executable), mode, std::move(onLoginURL),
                CodexAppServerClient::ProcessStarted(), std::move(completion));
          },
      .resolveExecutable =
          [&defaults, places = std::move(places)] {
            return CodexExecutableResolver::resolve(defaults.text(codexExecutablePathKey), places);
          },
  });
}

std::unique_ptr<ClaudeQuotaProvider> makeClaudeQuotaProvider(const ConversationHost& host,
                                                             const Clock& clock,
                                                             std::vector<std::string> places) {
  return std::make_unique<ClaudeQuotaProvider>(ClaudeQuotaProvider::Ports{
      .mainQueue = host.main,
      .clock = clock,
      .makeClient =
          [host](std::string executable, ClaudeCodeUsageClient::Completion completion) {
            return std::make_shared<ClaudeCodeUsageClient>(
                host, std::move(executable), ClaudeCodeUsageClient::usualTimeout,
                ClaudeCodeUsageClient::ProcessStarted(), std::move(completion));
          },
      .resolveExecutable =
          [places = std::move(places)] {
            return ClaudeExecutableResolver::resolve(std::nullopt, places);
          },
  });
}

}  // namespace vantora
