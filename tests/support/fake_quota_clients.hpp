// SPDX-License-Identifier: MIT
//
// Quota conversations that a test ends when it likes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "claude/claude_client.hpp"
#include "codex/codex_client.hpp"

namespace vantora::test {

class FakeCodexClient final : public CodexClient {
 public:
  void start() override { isStarted = true; }
  void cancel() override { isCancelled = true; }

  CodexClientMode mode = CodexClientMode::read;
  std::function<void(std::string)> onLoginURL;
  std::function<void(CodexClientResult)> completion;
  bool isStarted = false;
  bool isCancelled = false;
};

class FakeClaudeClient final : public ClaudeClient {
 public:
  void start() override { isStarted = true; }
  void cancel() override { isCancelled = true; }

  std::function<void(ClaudeClientResult)> completion;
  bool isStarted = false;
  bool isCancelled = false;
};

/// Makes clients and keeps every one.
struct FakeQuotaClients {
  [[nodiscard]] CodexClientFactory codexFactory() {
    return [this](const std::string&, CodexClientMode mode,
                  std::function<void(std::string)> onLoginURL,
                  std::function<void(CodexClientResult)> completion) {
      auto client = std::make_shared<FakeCodexClient>();
      client->mode = mode;
      client->onLoginURL = std::move(onLoginURL);
      client->completion = std::move(completion);
      codex.push_back(client);
      return client;
    };
  }
  [[nodiscard]] ClaudeClientFactory claudeFactory() {
    return [this](const std::string&, std::function<void(ClaudeClientResult)> completion) {
      auto client = std::make_shared<FakeClaudeClient>();
      client->completion = std::move(completion);
      claude.push_back(client);
      return client;
    };
  }

  std::vector<std::shared_ptr<FakeCodexClient>> codex;
  std::vector<std::shared_ptr<FakeClaudeClient>> claude;
};

}  // namespace vantora::test
