// SPDX-License-Identifier: MIT
//
// A quota client with a scripted child, under virtual time.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "quota/client_cases.hpp"
#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

template <typename Case>
class QuotaClientFixture : public testing::Test {
 protected:
  using Client = typename Case::Client;
  using Result = typename Case::Result;
  static constexpr Seconds moment{0.001};

  void make() {
    client = Case::make(
        host(), executable, [this](std::int32_t id) { ids.push_back(id); },
        [this](Result result) { results.push_back(std::move(result)); });
  }
  void start() {
    make();
    startMade();
  }
  void startMade() {
    client->start();
    time.runPosted();
  }
  [[nodiscard]] ConversationHost host() { return {*queue, launcher, "/home/user/.config/Vantora"}; }
  ScriptedProcess& child() { return launcher.latest(); }
  void say(std::string bytes) {
    child().output(std::move(bytes));
    time.runPosted();
  }
  void complain(std::string bytes) {
    child().errorOutput(std::move(bytes));
    time.runPosted();
  }
  void end() {
    child().exit({1, 0});
    time.runPosted();
  }
  /// Everything that the child says up to the answer.
  void answer() {
    for (const std::string& line : Case::script()) {
      if (!line.empty()) {
        say(line + "\n");
      }
    }
  }
  void expectResult(const Result& expected) {
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front(), expected);
    EXPECT_TRUE(child().isTerminated());
    EXPECT_TRUE(child().isInputClosed());
    EXPECT_EQ(time.pendingCount(), 0U) << "nothing may wait any more";
    time.advance(Seconds{1000});
    EXPECT_EQ(results.size(), 1U);
  }
  void expectAnswer() { expectResult(quota_result::Answer{Case::answer}); }
  void expectFailure(const char* text) { expectResult(quota_result::Failure{text}); }
  /// Both edges of an instant at which the result is decided.
  void expectResultAfter(Seconds delay, const Result& expected) {
    if (delay > Seconds{0}) {
      time.advance(delay - moment);
      EXPECT_THAT(results, testing::IsEmpty());
      time.advance(moment);
    }
    expectResult(expected);
  }

  VirtualTime time;
  std::unique_ptr<VirtualQueue> queue = time.makeQueue();
  ScriptedLauncher launcher{*queue};
  AssistantExecutable executable{"/opt/lib/tool", "/opt/bin/tool"};
  std::shared_ptr<Client> client;
  std::vector<Result> results;
  std::vector<std::int32_t> ids;
};

}  // namespace vantora::test
