// SPDX-License-Identifier: MIT
//
// The weekly and five-hour quotas of Claude Code: what each answer makes of the state. Unlike a
// passing failure, a missing executable, login or version is looked for again after a long wait.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "model/quota_state.hpp"
#include "quota/claude/claude_client.hpp"
#include "quota/claude/claude_usage_parser.hpp"
#include "quota/quota_provider.hpp"

namespace vantora {

class ClaudeQuotaProvider final
    : public QuotaProvider<ClaudeQuotaState, ClaudeClientResult, ClaudeClientFactory> {
 public:
  explicit ClaudeQuotaProvider(Ports ports);

 private:
  std::shared_ptr<QuotaClient> makeReader(
      const AssistantExecutable& executable,
      std::function<void(const ClaudeClientResult&)> completion) override {
    return ports().makeClient(executable, std::move(completion));
  }
  void accept(const ClaudeClientResult& result) override {
    std::visit([this](const auto& content) { take(content); }, result);
  }
  void showMissingExecutable() override;
  [[nodiscard]] std::optional<WallTime> passedReset(WallTime now) const override;
  [[nodiscard]] std::optional<Seconds> nextVisibleChange(WallTime now) const override;

  using QuotaProvider::take;
  void take(const quota_result::Answer& answer);
  void take(const quota_result::NeedsAuthentication& result);
  void take(const quota_result::UnsupportedVersion& result);
  void take(const ClaudeUsageReading& reading);
  void take(ClaudeUsageAbsence absence);

  /// Shows a status without values and asks again after `minWait`, or at the interval where that
  /// is longer.
  void showWithoutValues(ClaudeQuotaStatus status, const char* message, Seconds minWait);
};

}  // namespace vantora
