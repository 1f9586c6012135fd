// SPDX-License-Identifier: MIT
//
// A Codex provider on virtual time with clients that a test answers for.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "codex/codex_quota_provider.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

class FakeCodexClient final : public CodexClient {
 public:
  void start() override { ++starts; }
  void cancel() override { ++cancels; }

  std::string executable;
  CodexClientMode mode = CodexClientMode::read;
  std::function<void(std::string)> onLoginURL;
  std::function<void(CodexClientResult)> completion;
  int starts = 0;
  int cancels = 0;
};

class CodexQuotaProviderTest : public testing::Test {
 protected:
  static constexpr Seconds justBefore{0.001};

  CodexQuotaProviderTest() {
    provider_->onState = [this](const CodexQuotaState& state) { published_.push_back(state); };
    configuration_.modules = {{.top = MetricID::codexWeeklyPercent,
                               .bottom = MetricID::codexWeeklyReset,
                               .gapAfter = {},
                               .hideInactiveFans = {}}};
    settings().enabled = true;
  }

  CodexQuotaSettings& settings() {
    if (!configuration_.codexSettings) {
      configuration_.codexSettings.emplace();
    }
    return *configuration_.codexSettings;
  }
  void configure(bool sleeping = false) { provider_->configure(configuration_, sleeping); }

  /// What was published since the last call.
  std::vector<CodexQuotaState> takePublished() { return std::exchange(published_, {}); }

  [[nodiscard]] std::size_t clientCount() const { return clients_.size(); }
  /// The latest client; only while the provider keeps it.
  std::shared_ptr<FakeCodexClient> client() {
    auto latest = clients_.empty() ? nullptr : clients_.back().lock();
    EXPECT_NE(latest, nullptr);
    return latest;
  }
  [[nodiscard]] bool isConversing() const {
    return !clients_.empty() && !clients_.back().expired();
  }

  /// Ends the running conversation, as the real client does: on the main queue.
  void answer(CodexClientResult result) {
    const std::weak_ptr<FakeCodexClient> running = client();
    queue_->post([running, result = std::move(result)] {
      if (const auto kept = running.lock()) {
        kept->completion(result);
      }
    });
    time_.runPosted();
  }
  void answerQuota(double usedPercent, std::optional<Seconds> resetIn = std::nullopt,
                   const std::string& more = {}) {
    std::string window =
        R"("windowDurationMins":10080,"usedPercent":)" + std::to_string(usedPercent);
    if (resetIn) {
      window += R"(,"resetsAt":)" + std::to_string(unixNow() + static_cast<long>(resetIn->count()));
    }
    answer(codex_result::Quota{R"({"rateLimitsByLimitId":{"codex":{"primary":{)" + window + "}}}" +
                               more + "}"});
  }
  void answerFailure() { answer(codex_result::Failure{"Tempo limite do App Server excedido."}); }

  /// The clock starts on a whole second, and so do the resets that are counted from it.
  [[nodiscard]] long unixNow() const {
    return static_cast<long>(std::chrono::system_clock::to_time_t(time_.now()));
  }
  [[nodiscard]] const CodexQuotaState& state() const { return provider_->state(); }

  /// No query begins just before `delay` from now, exactly one does then.
  void expectQueryAfter(Seconds delay) {
    const std::size_t before = clientCount();
    time_.advance(delay - justBefore);
    EXPECT_EQ(clientCount(), before) << "too early";
    time_.advance(justBefore);
    EXPECT_EQ(clientCount(), before + 1) << "not at the instant";
  }
  void expectNoQueryForADay() {
    const std::size_t before = clientCount();
    time_.advance(std::chrono::hours{24});
    EXPECT_EQ(clientCount(), before);
  }
  /// Active, one query answered with a value; 30 s passed since it began.
  void becomeReady(std::optional<Seconds> resetIn = std::nullopt) {
    configure();
    answerQuota(40, resetIn);
    ASSERT_EQ(state().status, CodexQuotaStatus::ready);
    takePublished();
  }
  void becomeLoggedOut() {
    configure();
    answer(codex_result::NeedsAuthentication{});
    ASSERT_EQ(state().status, CodexQuotaStatus::needsAuthentication);
    takePublished();
  }

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  AppConfiguration configuration_;
  std::optional<std::string> executable_ = "/opt/codex";
  double fraction_ = 0;
  std::vector<std::weak_ptr<FakeCodexClient>> clients_;
  std::vector<CodexQuotaState> published_;
  std::optional<CodexQuotaProvider> provider_{
      std::in_place,
      CodexQuotaProvider::Ports{*queue_, time_,
                                [this](std::string executable, CodexClientMode mode,
                                       std::function<void(std::string)> onLoginURL,
                                       std::function<void(CodexClientResult)> completion) {
                                  auto made = std::make_shared<FakeCodexClient>();
                                  made->executable = std::move(executable);
                                  made->mode = mode;
                                  made->onLoginURL = std::move(onLoginURL);
                                  made->completion = std::move(completion);
                                  clients_.push_back(made);
                                  return made;
                                },
                                [this] { return executable_; }, [this] { return fraction_; }}};
};

}  // namespace vantora::test
