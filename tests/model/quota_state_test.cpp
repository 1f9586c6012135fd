// SPDX-License-Identifier: MIT
#include "model/quota_state.hpp"

#include <gtest/gtest.h>

#include "support/example_time.hpp"

namespace vantora {
namespace {

using test::exampleTime;

CodexQuotaState readyCodex() {
  CodexQuotaState state;
  state.status = CodexQuotaStatus::ready;
  state.usedPercent = 10;
  state.lastSuccess = exampleTime;
  return state;
}

ClaudeQuotaState readyClaude() {
  ClaudeQuotaState state;
  state.status = ClaudeQuotaStatus::ready;
  state.weeklyUsed = 10;
  state.lastSuccess = exampleTime;
  return state;
}

template <typename State>
void expectThirtyMinutesOfLife(const State& state) {
  using std::chrono::milliseconds;
  using std::chrono::minutes;
  EXPECT_TRUE(state.isPresentable(exampleTime));
  EXPECT_TRUE(state.isPresentable(exampleTime + minutes(30) - milliseconds(1)));
  EXPECT_FALSE(state.isPresentable(exampleTime + minutes(30)));
}

TEST(CodexQuotaState, StartsDisabled) {
  const CodexQuotaState state;
  EXPECT_EQ(state.status, CodexQuotaStatus::disabled);
  EXPECT_EQ(state.message, "Integração desativada.");
  EXPECT_EQ(state.settings, CodexQuotaSettings());
  EXPECT_FALSE(state.isPresentable(exampleTime));
}

TEST(CodexQuotaState, IsPresentableForLessThanThirtyMinutes) {
  expectThirtyMinutesOfLife(readyCodex());
}

TEST(CodexQuotaState, IsPresentableOnlyWhenReadyOrStale) {
  for (int index = 0; index <= static_cast<int>(CodexQuotaStatus::error); ++index) {
    CodexQuotaState state = readyCodex();
    state.status = static_cast<CodexQuotaStatus>(index);
    EXPECT_EQ(state.isPresentable(exampleTime),
              state.status == CodexQuotaStatus::ready || state.status == CodexQuotaStatus::stale)
        << rawText(state.status);
  }
}

TEST(CodexQuotaState, IsNotPresentableWithoutValueOrSuccess) {
  CodexQuotaState state = readyCodex();
  state.usedPercent.reset();
  EXPECT_FALSE(state.isPresentable(exampleTime));
  state = readyCodex();
  state.lastSuccess.reset();
  EXPECT_FALSE(state.isPresentable(exampleTime));
}

TEST(CodexQuotaCandidate, IsTitledByNameAndIdOrByIdAlone) {
  EXPECT_EQ((CodexQuotaCandidate{"codex", "Codex"}).title(), "Codex (codex)");
  EXPECT_EQ((CodexQuotaCandidate{"codex", std::nullopt}).title(), "codex");
}

TEST(CodexQuotaStatus, IsWrittenAsItsCaseName) {
  EXPECT_EQ(rawText(CodexQuotaStatus::disabled), "disabled");
  EXPECT_EQ(rawText(CodexQuotaStatus::dependencyMissing), "dependencyMissing");
  EXPECT_EQ(rawText(CodexQuotaStatus::connecting), "connecting");
  EXPECT_EQ(rawText(CodexQuotaStatus::needsAuthentication), "needsAuthentication");
  EXPECT_EQ(rawText(CodexQuotaStatus::ready), "ready");
  EXPECT_EQ(rawText(CodexQuotaStatus::stale), "stale");
  EXPECT_EQ(rawText(CodexQuotaStatus::weeklyUnavailable), "weeklyUnavailable");
  EXPECT_EQ(rawText(CodexQuotaStatus::selectionRequired), "selectionRequired");
  EXPECT_EQ(rawText(CodexQuotaStatus::permissionDenied), "permissionDenied");
  EXPECT_EQ(rawText(CodexQuotaStatus::unsupportedVersion), "unsupportedVersion");
  EXPECT_EQ(rawText(CodexQuotaStatus::error), "error");
}

TEST(ClaudeQuotaState, StartsDisabled) {
  const ClaudeQuotaState state;
  EXPECT_EQ(state.status, ClaudeQuotaStatus::disabled);
  EXPECT_EQ(state.message, "Integração desativada.");
  EXPECT_EQ(state.settings, ClaudeQuotaSettings());
  EXPECT_FALSE(state.isPresentable(exampleTime));
}

TEST(ClaudeQuotaState, IsPresentableForLessThanThirtyMinutes) {
  expectThirtyMinutesOfLife(readyClaude());
}

TEST(ClaudeQuotaState, IsPresentableWithEitherValueAlone) {
  ClaudeQuotaState state = readyClaude();
  state.weeklyUsed.reset();
  EXPECT_FALSE(state.isPresentable(exampleTime));
  state.sessionUsed = 0;
  EXPECT_TRUE(state.isPresentable(exampleTime));
}

TEST(ClaudeQuotaState, IsPresentableOnlyWhenReadyOrStale) {
  for (int index = 0; index <= static_cast<int>(ClaudeQuotaStatus::error); ++index) {
    ClaudeQuotaState state = readyClaude();
    state.status = static_cast<ClaudeQuotaStatus>(index);
    EXPECT_EQ(state.isPresentable(exampleTime),
              state.status == ClaudeQuotaStatus::ready || state.status == ClaudeQuotaStatus::stale)
        << rawText(state.status);
  }
}

TEST(ClaudeQuotaStatus, IsWrittenAsItsCaseName) {
  EXPECT_EQ(rawText(ClaudeQuotaStatus::disabled), "disabled");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::dependencyMissing), "dependencyMissing");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::connecting), "connecting");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::needsAuthentication), "needsAuthentication");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::ready), "ready");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::stale), "stale");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::limitsUnavailable), "limitsUnavailable");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::unsupportedVersion), "unsupportedVersion");
  EXPECT_EQ(rawText(ClaudeQuotaStatus::error), "error");
}

}  // namespace
}  // namespace vantora
