// SPDX-License-Identifier: MIT
//
// What both clients do alike with real children: each ends with one result, and nothing is left.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "quota/process_fixture.hpp"

namespace vantora {
namespace {

using quota_result::Cancelled;
using test::isIgnoringTermination;
using test::isRunning;

template <typename Case>
class QuotaProcessTest : public test::QuotaProcessFixture<Case> {};
TYPED_TEST_SUITE(QuotaProcessTest, test::ClientCases, test::ClientCaseNames);

TYPED_TEST(QuotaProcessTest, ReadsTheAnswer) {
  this->start("answer", TypeParam::script());
  this->expectAnswer();
}

TYPED_TEST(QuotaProcessTest, ReadsTheAnswerOfAChildThatEndsWithIt) {
  this->start("answer-and-exit", TypeParam::script());
  this->expectAnswer();
}

TYPED_TEST(QuotaProcessTest, FailsForAnExecutableThatDoesNotExist) {
  this->startExecutable("/nowhere/tool");
  this->expectFailure(TypeParam::couldNotStart);
  EXPECT_EQ(this->child, 0);
}

TYPED_TEST(QuotaProcessTest, RefusesAFileThatOnlyAShellCouldRun) {
  const std::string script = this->folder.makeHelperScript("answer", TypeParam::script());
  std::stringstream text;
  text << std::ifstream(script).rdbuf();
  std::string firstLine;
  std::getline(text, firstLine);
  std::ofstream(script) << text.rdbuf();
  this->startExecutable(script);
  this->expectFailure(TypeParam::couldNotStart);
  EXPECT_EQ(this->child, 0);
}

TYPED_TEST(QuotaProcessTest, FindsTheInterpreterBesideTheLinkToAScript) {
  // As a package manager does: bin/tool leads to lib/tool.js, and bin/node is beside it.
  const std::string helper = this->folder.makeHelperScript("answer", TypeParam::script());
  namespace fs = std::filesystem;
  const fs::path root = this->folder.path();
  fs::create_directories(root / "bin");
  fs::create_directories(root / "lib");
  std::ofstream(root / "lib/tool.js") << "#!/usr/bin/env vantora-test-node\n";
  std::ofstream(root / "bin/vantora-test-node") << "#!/bin/sh\nexec '" << helper << "'\n";
  fs::permissions(root / "lib/tool.js", fs::perms::owner_all);
  fs::permissions(root / "bin/vantora-test-node", fs::perms::owner_all);
  fs::create_symlink("../lib/tool.js", root / "bin/tool");
  this->startExecutable(fs::canonical(root / "bin/tool").string(), (root / "bin/tool").string());
  this->expectAnswer();
}

TYPED_TEST(QuotaProcessTest, WaitsForASilentChildUntilTheDeadline) {
  this->start("silent");
  this->expectDeadline();
}

TYPED_TEST(QuotaProcessTest, FailsForAChildThatDiedOfASignal) {
  this->startAfterOpening({"die"});
  // Its output ends with it, which is noticed first.
  this->expectFailure(TypeParam::outputClosed);
}

TYPED_TEST(QuotaProcessTest, SeesTheEndOfAChildWhoseGrandchildKeepsItsPipesOpen) {
  const std::string file = this->folder.path() + "/grandchild";
  this->startAfterOpening({"leave-a-quiet-grandchild", file});
  this->expectFailure(TypeParam::exited);
  int grandchild = 0;
  std::ifstream(file) >> grandchild;
  ASSERT_GT(grandchild, 0);
  this->processes.runUntil([grandchild] { return !isRunning(grandchild); });
}

TYPED_TEST(QuotaProcessTest, StopsAFloodOfOutput) {
  this->startAfterOpening({"flood"});
  this->expectFailure(TypeParam::overLimit);
}

TYPED_TEST(QuotaProcessTest, FailsWhenTheOutputWasClosed) {
  this->startAfterOpening({"close-output"});
  this->expectFailure(TypeParam::outputClosed);
}

TYPED_TEST(QuotaProcessTest, IsNotHeldUpByAChildThatIgnoresTermination) {
  this->startAfterOpening({"ignore-termination"});
  this->processes.runUntil([this] { return isIgnoringTermination(this->child); });
  this->client->cancel();
  this->time.runPosted();
  ASSERT_EQ(this->results.size(), 1U);
  const int stubborn = this->child;
  EXPECT_TRUE(isRunning(stubborn));
  // The next query does not wait for it.
  this->client.reset();
  this->results.clear();
  this->start("answer", TypeParam::script());
  this->expectAnswer();
  EXPECT_FALSE(isRunning(stubborn));
}

TYPED_TEST(QuotaProcessTest, TerminatesTheChildWhenItIsCancelled) {
  this->start("silent");
  this->client->cancel();
  this->expectResult(Cancelled{});
  EXPECT_FALSE(isRunning(this->child));
}

TYPED_TEST(QuotaProcessTest, TerminatesTheChildWhenItIsDestroyed) {
  this->start("silent");
  this->client.reset();
  this->time.runPosted();
  this->expectNothingLeft();
  EXPECT_FALSE(isRunning(this->child));
  EXPECT_TRUE(this->results.empty());
}

TYPED_TEST(QuotaProcessTest, LeavesNothingAfterManyConversations) {
  for (int round = 0; round < 20; ++round) {
    this->results.clear();
    this->start(round % 2 == 0 ? "close-output" : "flood");
    this->runUntilResultOrGrace();
    this->client.reset();
  }
  this->time.runPosted();
  this->expectNothingLeft();
  EXPECT_EQ(this->time.pendingCount(), 0U);
}

}  // namespace
}  // namespace vantora
