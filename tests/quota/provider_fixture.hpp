// SPDX-License-Identifier: MIT
//
// A quota provider under virtual time with clients that a test answers for.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quota/provider_cases.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

template <typename Case>
class QuotaProviderFixture : public testing::Test {
 protected:
  using Client = FakeQuotaClient<typename Case::Result>;
  using State = typename Case::State;
  using Status = typename Case::Status;
  using Settings = decltype(State::settings);
  static constexpr Seconds justBefore{0.001};

  QuotaProviderFixture() {
    provider_->onState = [this](const State& state) { published_.push_back(state); };
    configuration_.modules = {
        {.top = Case::top, .bottom = Case::bottom, .gapAfter = {}, .hideInactiveFans = {}}};
    settings().enabled = true;
  }

  Settings& settings() {
    auto& settings = configuration_.*Case::settings;
    return settings ? *settings : settings.emplace();
  }
  void configure(bool sleeping = false) { provider_->configure(configuration_, sleeping); }
  void showPercentOnly() { configuration_.modules[0].bottom = MetricID::none; }

  /// What was published since the last call.
  std::vector<State> takePublished() { return std::exchange(published_, {}); }

  [[nodiscard]] std::size_t clientCount() const { return clients_.size(); }
  /// The latest client; only while the provider keeps it.
  std::shared_ptr<Client> client() {
    auto latest = clients_.empty() ? nullptr : clients_.back().lock();
    EXPECT_NE(latest, nullptr);
    return latest;
  }
  [[nodiscard]] bool isConversing() const {
    return !clients_.empty() && !clients_.back().expired();
  }

  /// Ends the running conversation, as the real client does: on the main queue.
  void answer(typename Case::Result result) {
    const std::weak_ptr<Client> running = client();
    queue_->post([running, result = std::move(result)] {
      if (const auto kept = running.lock()) {
        kept->completion(result);
      }
    });
    time_.runPosted();
  }
  void answerJson(std::string json) { answer(quota_result::Answer{std::move(json)}); }
  void answerFailure() { answer(quota_result::Failure{Case::failure}); }
  void answerWithResetAt(WallTime resetAt) {
    answerJson(Case::reading(40, unixSeconds(resetAt)));
    ASSERT_EQ(Case::resetAt(state()), resetAt);
  }
  void answerWithResetIn(Seconds resetIn) { answerWithResetAt(wholeSecondFromNow(resetIn)); }
  void answerReading(double used = 40) { answerJson(Case::reading(used, std::nullopt)); }

  /// Resets are whole seconds; the clock starts on one.
  [[nodiscard]] WallTime wholeSecondFromNow(Seconds delay) const {
    return std::chrono::ceil<std::chrono::seconds>(time_.now()) +
           std::chrono::seconds{std::lround(delay.count())};
  }
  static long unixSeconds(WallTime time) {
    return static_cast<long>(std::chrono::system_clock::to_time_t(time));
  }
  [[nodiscard]] const State& state() const { return provider_->state(); }

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
  /// A query after `wait`, or never.
  void expectNextQuery(std::optional<Seconds> wait) {
    EXPECT_EQ(time_.pendingCount(), wait ? 1U : 0U);
    wait ? expectQueryAfter(*wait) : expectNoQueryForADay();
  }
  /// Nothing is published just before `delay` from now, one state is then.
  void expectPublishedAfter(Seconds delay) {
    takePublished();
    time_.advance(delay - justBefore);
    EXPECT_THAT(published_, testing::IsEmpty()) << "too early";
    time_.advance(justBefore);
    EXPECT_EQ(takePublished().size(), 1U) << "not at the instant";
  }
  /// Active, one query answered with a value.
  void becomeReady(std::optional<Seconds> resetIn = std::nullopt) {
    configure();
    resetIn ? answerWithResetIn(*resetIn) : answerReading();
    ASSERT_EQ(state().status, Status::ready);
    takePublished();
  }
  /// At an interval of a minute, from an answer on: the next query and its retries fail, the last
  /// of them 1,320 s after the answer. The value expires 480 s later, and the next retry is later
  /// still.
  void failUntilTheValueIsNearlyOld() {
    for (const double seconds : {60.0, 180.0, 360.0, 720.0}) {
      expectQueryAfter(Seconds{seconds});
      answerFailure();
    }
  }

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  AppConfiguration configuration_;
  std::optional<AssistantExecutable> executable_ = AssistantExecutable{"/opt/tool", "/opt/tool"};
  double fraction_ = 0;
  std::vector<std::weak_ptr<Client>> clients_;
  std::vector<State> published_;
  std::optional<typename Case::Provider> provider_{
      std::in_place,
      typename Case::Provider::Ports{*queue_, time_,
                                     fakeClientFactory([this](const std::shared_ptr<Client>& made) {
                                       clients_.push_back(made);
                                     }),
                                     [this] { return executable_; }, [this] { return fraction_; }}};
};

/// The columns of the tests that both providers pass.
using ProviderCases = testing::Types<CodexCase, ClaudeCase>;
struct ProviderCaseNames {
  template <typename Case>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<Case, CodexCase> ? "Codex" : "Claude";
  }
};

}  // namespace vantora::test
