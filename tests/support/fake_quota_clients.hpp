// SPDX-License-Identifier: MIT
//
// Quota conversations that a test ends when it likes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "quota/claude/claude_client.hpp"
#include "quota/codex/codex_client.hpp"

namespace vantora::test {

template <typename Result>
class FakeQuotaClient final : public QuotaClient {
 public:
  void start() override { ++starts; }
  void cancel() override { ++cancels; }

  AssistantExecutable executable;
  CodexClientMode mode = CodexClientMode::read;
  std::function<void(std::string)> onLoginURL;
  std::function<void(Result)> completion;
  int starts = 0;
  int cancels = 0;
};
using FakeCodexClient = FakeQuotaClient<CodexClientResult>;
using FakeClaudeClient = FakeQuotaClient<ClaudeClientResult>;

/// A factory that gives every client that it makes to `onMade` as well.
inline CodexClientFactory fakeClientFactory(
    std::function<void(std::shared_ptr<FakeCodexClient>)> onMade) {
  return [onMade = std::move(onMade)](const AssistantExecutable& executable, CodexClientMode mode,
                                      std::function<void(std::string)> onLoginURL,
                                      std::function<void(CodexClientResult)> completion) {
    auto client = std::make_shared<FakeCodexClient>();
    client->executable = executable;
    client->mode = mode;
    client->onLoginURL = std::move(onLoginURL);
    client->completion = std::move(completion);
    onMade(client);
    return client;
  };
}
inline ClaudeClientFactory fakeClientFactory(
    std::function<void(std::shared_ptr<FakeClaudeClient>)> onMade) {
  return [onMade = std::move(onMade)](const AssistantExecutable& executable,
                                      std::function<void(ClaudeClientResult)> completion) {
    auto client = std::make_shared<FakeClaudeClient>();
    client->executable = executable;
    client->completion = std::move(completion);
    onMade(client);
    return client;
  };
}

/// Makes clients and keeps every one.
struct FakeQuotaClients {
  [[nodiscard]] CodexClientFactory codexFactory() {
    return fakeClientFactory(
        [this](std::shared_ptr<FakeCodexClient> made) { codex.push_back(std::move(made)); });
  }
  [[nodiscard]] ClaudeClientFactory claudeFactory() {
    return fakeClientFactory(
        [this](std::shared_ptr<FakeClaudeClient> made) { claude.push_back(std::move(made)); });
  }

  std::vector<std::shared_ptr<FakeCodexClient>> codex;
  std::vector<std::shared_ptr<FakeClaudeClient>> claude;
};

}  // namespace vantora::test
