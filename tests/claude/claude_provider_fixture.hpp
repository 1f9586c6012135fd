// SPDX-License-Identifier: MIT
//
// A Claude provider on virtual time with clients that a test answers for.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "claude/claude_quota_provider.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

class FakeClaudeClient final : public ClaudeClient {
 public:
  void start() override { ++starts; }
  void cancel() override { ++cancels; }

  std::string executable;
  std::function<void(ClaudeClientResult)> completion;
  int starts = 0;
  int cancels = 0;
};

class ClaudeQuotaProviderTest : public testing::Test {
 protected:
  static constexpr Seconds justBefore{0.001};

  ClaudeQuotaProviderTest() {
    provider_->onState = [this](const ClaudeQuotaState& state) { published_.push_back(state); };
    configuration_.modules = {{.top = MetricID::claudeWeeklyPercent,
                               .bottom = MetricID::claudeSessionPercent,
                               .gapAfter = {},
                               .hideInactiveFans = {}}};
    settings().enabled = true;
  }

  ClaudeQuotaSettings& settings() {
    if (!configuration_.claudeSettings) {
      configuration_.claudeSettings.emplace();
    }
    return *configuration_.claudeSettings;
  }
  void configure(bool sleeping = false) { provider_->configure(configuration_, sleeping); }

  /// What was published since the last call.
  std::vector<ClaudeQuotaState> takePublished() { return std::exchange(published_, {}); }

  [[nodiscard]] std::size_t clientCount() const { return clients_.size(); }
  /// The latest client; only while the provider keeps it.
  std::shared_ptr<FakeClaudeClient> client() {
    auto latest = clients_.empty() ? nullptr : clients_.back().lock();
    EXPECT_NE(latest, nullptr);
    return latest;
  }
  [[nodiscard]] bool isAsking() const { return !clients_.empty() && !clients_.back().expired(); }

  /// Ends the running query, as the real client does: on the main queue.
  void answer(ClaudeClientResult result) {
    const std::weak_ptr<FakeClaudeClient> running = client();
    queue_->post([running, result = std::move(result)] {
      if (const auto kept = running.lock()) {
        kept->completion(result);
      }
    });
    time_.runPosted();
  }
  void answerUsage(const std::string& json) { answer(claude_result::Usage{json}); }
  /// A reading whose windows reset so long from now.
  void answerReading(Seconds weeklyResetIn, Seconds sessionResetIn, double weekly = 40,
                     double session = 20) {
    answerUsage(R"({"rate_limits":{"seven_day":)" + window(weekly, weeklyResetIn) +
                R"(,"five_hour":)" + window(session, sessionResetIn) + "}}");
  }
  void answerReading() { answerReading(Seconds{400'000}, Seconds{18'000}); }
  void answerFailure() { answer(claude_result::Failure{"Tempo limite do Claude Code excedido."}); }

  [[nodiscard]] const ClaudeQuotaState& state() const { return provider_->state(); }

  /// No query begins just before `delay` from now, exactly one does then.
  void expectQueryAfter(Seconds delay) {
    const std::size_t before = clientCount();
    time_.advance(delay - justBefore);
    EXPECT_EQ(clientCount(), before) << "too early";
    time_.advance(justBefore);
    EXPECT_EQ(clientCount(), before + 1) << "not at the instant";
  }
  /// Active, one query answered with values.
  void becomeReady() {
    configure();
    answerReading();
    ASSERT_EQ(state().status, ClaudeQuotaStatus::ready);
    takePublished();
  }

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  AppConfiguration configuration_;
  std::optional<std::string> executable_ = "/opt/claude";
  double fraction_ = 0;
  std::vector<std::weak_ptr<FakeClaudeClient>> clients_;
  std::vector<ClaudeQuotaState> published_;
  std::optional<ClaudeQuotaProvider> provider_{
      std::in_place,
      ClaudeQuotaProvider::Ports{
          *queue_, time_,
          [this](std::string executable, std::function<void(ClaudeClientResult)> completion) {
            auto made = std::make_shared<FakeClaudeClient>();
            made->executable = std::move(executable);
            made->completion = std::move(completion);
            clients_.push_back(made);
            return made;
          },
          [this] { return executable_; }, [this] { return fraction_; }}};

 private:
  [[nodiscard]] std::string window(double utilization, Seconds resetIn) const {
    const auto now = std::chrono::duration_cast<Seconds>(time_.now().time_since_epoch());
    return R"({"utilization":)" + std::to_string(utilization) + R"(,"resets_at":)" +
           std::to_string((now + resetIn).count()) + "}";
  }
};

}  // namespace vantora::test
