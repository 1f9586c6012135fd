// SPDX-License-Identifier: MIT
//
// What the Claude client does differently with real children.
#include "quota/process_fixture.hpp"

namespace vantora {
namespace {

using quota_result::NeedsAuthentication;
using test::hasClosedItsInput;

class ClaudeCodeUsageProcessTest : public test::QuotaProcessFixture<test::ClaudeClientCase> {};

TEST_F(ClaudeCodeUsageProcessTest, FindsALoginProblemOfAChildThatEnds) {
  startAfterOpening({"complain", "Invalid API key · Please run /login"});
  expectResult(NeedsAuthentication{});
}

TEST_F(ClaudeCodeUsageProcessTest, ReadsPastAHugeErrorOutput) {
  start("huge-error", test::ClaudeClientCase::script());
  expectAnswer();
}

TEST_F(ClaudeCodeUsageProcessTest, ReadsTheUsageOfAChildThatClosedItsInputEarly) {
  // It reads the first question only; both were accepted before.
  start("answer-and-close-unread-input", {test::ClaudeClientCase::script().back()});
  expectAnswer();
}

TEST_F(ClaudeCodeUsageProcessTest, WaitsForAChildThatClosedItsInputUntilTheDeadline) {
  start("after-lines", {"1", "close-unread-input"});
  processes.runUntil([this] { return hasClosedItsInput(child); });
  processes.runReady();
  expectDeadline();
}

}  // namespace
}  // namespace vantora
