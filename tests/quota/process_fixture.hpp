// SPDX-License-Identifier: MIT
//
// A quota client with real children: each ends with one result, and nothing is left.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "quota/client_cases.hpp"
#include "support/real_processes.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

template <typename Case>
class QuotaProcessFixture : public testing::Test {
 protected:
  using Client = typename Case::Client;
  using Result = typename Case::Result;

  void start(const std::string& scenario, const std::vector<std::string>& arguments = {}) {
    startExecutable(folder.makeHelperScript(scenario, arguments));
  }
  /// After the opening lines, so that none of them is refused.
  void startAfterOpening(std::vector<std::string> scenario) {
    scenario.insert(scenario.begin(), Case::openingLines);
    start("after-lines", scenario);
  }
  void startExecutable(const std::string& path) { startExecutable(path, path); }
  void startExecutable(const std::string& path, const std::string& foundPath) {
    client = Case::make(
        {*timers, processes.launcher(), folder.path() + "/Vantora"}, {path, foundPath},
        [this](std::int32_t id) { child = id; },
        [this](Result result) { results.push_back(std::move(result)); });
    client->start();
    time.runPosted();
  }
  /// Lets the child live until a result came, or until only the grace is awaited.
  void runUntilResultOrGrace() {
    processes.runUntil([this] {
      time.runPosted();
      return !results.empty() || time.untilNext() <= Case::endGrace;
    });
  }
  void expectResult(const Result& expected) {
    runUntilResultOrGrace();
    if (results.empty()) {
      processes.runReady();  // what was written before the end is there
      time.advance(Case::endGrace);
    }
    client.reset();
    time.advance(UvChildProcessLauncher::terminationGrace);
    expectNothingLeft();
    time.advance(Seconds{1000});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front(), expected);
    EXPECT_EQ(time.pendingCount(), 0U);
  }
  void expectAnswer() { expectResult(quota_result::Answer{Case::answer}); }
  void expectFailure(const char* text) { expectResult(quota_result::Failure{text}); }
  void expectNothingLeft() {
    processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  }
  void expectDeadline() {
    time.advance(Case::deadline - Seconds{0.001});
    processes.runReady();
    time.runPosted();
    EXPECT_TRUE(results.empty());
    time.advance(Seconds{0.001});
    expectFailure(Case::late);
  }

  HelperFolder folder;
  VirtualTime time;
  std::unique_ptr<VirtualQueue> timers = time.makeQueue();
  RealProcesses processes{timers.get()};
  ProcessCensus before = ProcessCensus::take();
  std::shared_ptr<Client> client;
  std::vector<Result> results;
  std::int32_t child = 0;
};

}  // namespace vantora::test
