// SPDX-License-Identifier: MIT
//
// What both clients do alike, with a scripted child under virtual time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "quota/client_fixture.hpp"

namespace vantora {
namespace {

using quota_result::Cancelled;
using quota_result::Failure;
using test::ScriptedProcess;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Case>
class QuotaClientTest : public test::QuotaClientFixture<Case> {};
TYPED_TEST_SUITE(QuotaClientTest, test::ClientCases, test::ClientCaseNames);

TYPED_TEST(QuotaClientTest, StartsNothingByItself) {
  this->make();
  this->time.advance(Seconds{1000});
  EXPECT_THAT(this->launcher.started(), IsEmpty());
  EXPECT_THAT(this->results, IsEmpty());
}

TYPED_TEST(QuotaClientTest, StartsItsProgramInItsOwnFolder) {
  this->make();
  this->client->start();
  EXPECT_THAT(this->launcher.started(), IsEmpty()) << "start() only posts";
  this->time.runPosted();
  ASSERT_EQ(this->launcher.started().size(), 1U);
  const ChildProcessOptions& options = this->child().options();
  EXPECT_EQ(options.executable, this->executable.path);
  EXPECT_EQ(options.arguments, TypeParam::arguments());
  EXPECT_EQ(options.name, this->executable.foundPath);
  auto environment = TypeParam::environment();
  environment["PATH"] = searchPathFor(this->executable, std::getenv("PATH"));
  EXPECT_EQ(options.environmentChanges, environment);
  EXPECT_EQ(options.workingDirectory, "/home/user/.config/Vantora");
  EXPECT_THAT(this->ids, ElementsAre(this->child().id()));
}

TYPED_TEST(QuotaClientTest, StartsOnlyOnce) {
  this->start();
  this->client->start();
  this->time.runPosted();
  EXPECT_EQ(this->launcher.started().size(), 1U);
}

TYPED_TEST(QuotaClientTest, DeliversTheAnswer) {
  this->start();
  this->answer();
  this->expectAnswer();
}

TYPED_TEST(QuotaClientTest, TakesAnAnswerThatIsSplitOverSeveralReads) {
  this->start();
  for (const std::string& line : TypeParam::script()) {
    for (const char byte : line) {
      this->child().output(std::string(1, byte));
    }
    this->child().output(line.empty() ? "" : "\n");
  }
  this->time.runPosted();
  this->expectAnswer();
}

TYPED_TEST(QuotaClientTest, TakesSeveralAnswersOfOneRead) {
  this->start();
  std::string all;
  for (const std::string& line : TypeParam::script()) {
    all += line.empty() ? "" : line + "\n";
  }
  this->say(all);
  this->expectAnswer();
}

TYPED_TEST(QuotaClientTest, KeepsAnAnswerThatCameBeforeTheEnd) {
  this->start();
  auto script = TypeParam::script();
  const std::string last = script.back() + "\n";
  script.pop_back();
  for (const std::string& line : script) {
    this->say(line.empty() ? "" : line + "\n");
  }
  this->child().output(last);
  this->child().endOutput();
  this->child().exit();
  this->time.runPosted();
  this->expectAnswer();
}

TYPED_TEST(QuotaClientTest, FailsWhenTheProgramCannotBeStarted) {
  this->launcher.failStarts(Fault::absent());
  this->start();
  EXPECT_THAT(this->results,
              ElementsAre(typename TestFixture::Result(Failure{TypeParam::couldNotStart})));
  EXPECT_THAT(this->ids, IsEmpty());
  EXPECT_EQ(this->time.pendingCount(), 0U);
  this->time.advance(Seconds{1000});
  EXPECT_EQ(this->results.size(), 1U);
}

TYPED_TEST(QuotaClientTest, FailsWhenTheInputWasClosedBeforeTheFirstRequest) {
  this->launcher.onStart = [](ScriptedProcess& process) { process.closeInput(); };
  this->start();
  EXPECT_THAT(this->ids, ElementsAre(this->child().id()));
  this->expectFailure(TypeParam::inputClosed);
}

TYPED_TEST(QuotaClientTest, FailsWhenARequestDidNotGoThrough) {
  this->start();
  this->child().loseInput();
  this->time.runPosted();
  this->expectFailure(TypeParam::inputClosed);
}

TYPED_TEST(QuotaClientTest, FailsAtItsDeadline) {
  this->start();
  EXPECT_EQ(this->queue->lastLeeway(), Seconds{0});
  this->expectResultAfter(TypeParam::deadline, Failure{TypeParam::late});
}

TYPED_TEST(QuotaClientTest, FailsWhenTheOutputEnds) {
  this->start();
  this->child().endOutput();
  this->time.runPosted();
  this->expectResultAfter(TypeParam::endGrace, Failure{TypeParam::outputClosed});
}

TYPED_TEST(QuotaClientTest, FailsWhenTheProcessEnds) {
  this->start();
  this->end();
  EXPECT_EQ(this->queue->lastLeeway(), Seconds{0});
  this->expectResultAfter(TypeParam::endGrace, Failure{TypeParam::exited});
}

TYPED_TEST(QuotaClientTest, FailsWithWhicheverEndComesFirst) {
  this->start();
  this->child().endOutput();
  this->child().exit();
  this->time.runPosted();
  this->expectResultAfter(TypeParam::endGrace, Failure{TypeParam::outputClosed});
}

TYPED_TEST(QuotaClientTest, AcceptsAMillionBytesThatWait) {
  this->start();
  this->say(std::string(1'000'000, ' '));
  EXPECT_THAT(this->results, IsEmpty());
  this->say(" ");
  this->expectFailure(TypeParam::overLimit);
}

TYPED_TEST(QuotaClientTest, RefusesAMillionAndOneBytesAtOnceWhateverTheyAre) {
  this->start();
  // The limit counts this->before any line is taken out of what came.
  const std::string line = TypeParam::script().front() + "\n";
  this->say(line + std::string(1'000'001 - line.size(), ' '));
  this->expectFailure(TypeParam::overLimit);
}

TYPED_TEST(QuotaClientTest, TakesAReadOfExactlyTheLimit) {
  this->start();
  const std::string line = TypeParam::script().front() + "\n";
  this->say(line + std::string(1'000'000 - line.size(), ' '));
  EXPECT_THAT(this->results, IsEmpty());
}

TYPED_TEST(QuotaClientTest, BoundsTheLinesOfAConversation) {
  // A notification to the one, an informational message to the other.
  const std::string line = "{\"type\":\"system\"}\n";
  this->start();
  for (std::size_t count = 0; count < maxConversationLines; ++count) {
    this->child().output(line);
  }
  this->time.runPosted();
  EXPECT_THAT(this->results, IsEmpty());
  this->say(line);
  this->expectFailure(TypeParam::overLimit);
}

TYPED_TEST(QuotaClientTest, BoundsTheBytesOfAConversation) {
  std::string line = "{\"type\":\"system\"}";
  line.insert(1, std::string(500'000 - line.size() - 1, ' '));
  line += '\n';
  this->start();
  for (std::size_t bytes = 0; bytes < maxConversationBytes; bytes += line.size()) {
    this->say(line);
  }
  EXPECT_THAT(this->results, IsEmpty());
  this->say("\n");
  this->expectFailure(TypeParam::overLimit);
}

TYPED_TEST(QuotaClientTest, BoundsTheErrorOutputOfAConversation) {
  this->start();
  this->child().errorOutput(std::string(maxConversationBytes, 'e'));
  this->time.runPosted();
  EXPECT_THAT(this->results, IsEmpty());
  this->child().errorOutput("e");
  this->time.runPosted();
  this->expectFailure(TypeParam::overLimit);
}

TYPED_TEST(QuotaClientTest, DecidesNothingForErrorOutput) {
  this->start();
  this->child().errorOutput(std::string(2'000'000, 'e'));
  this->time.runPosted();
  EXPECT_THAT(this->results, IsEmpty());
  this->answer();
  this->expectAnswer();
}

TYPED_TEST(QuotaClientTest, CanBeCancelled) {
  this->start();
  this->client->cancel();
  EXPECT_THAT(this->results, IsEmpty());
  this->time.runPosted();
  this->expectResult(Cancelled{});
}

TYPED_TEST(QuotaClientTest, StartsNothingOnceItWasCancelled) {
  this->make();
  this->client->cancel();
  this->client->start();
  this->time.advance(Seconds{1000});
  EXPECT_THAT(this->launcher.started(), IsEmpty());
  EXPECT_THAT(this->results, ElementsAre(typename TestFixture::Result(Cancelled{})));
}

TYPED_TEST(QuotaClientTest, DeliversNothingMoreWhenCancelledAfterTheResult) {
  this->start();
  this->answer();
  this->client->cancel();
  this->client->cancel();
  this->time.advance(Seconds{1000});
  this->expectAnswer();
}

TYPED_TEST(QuotaClientTest, DeliversTheFirstOfTwoResultsThatWereDecidedTogether) {
  this->start();
  this->child().loseInput();
  this->client->cancel();
  this->time.runPosted();
  this->expectFailure(TypeParam::inputClosed);
}

TYPED_TEST(QuotaClientTest, TerminatesTheChildAndIsSilentWhenItIsDestroyed) {
  this->start();
  this->child().endOutput();
  this->child().output(TypeParam::script().front() + "\n");
  this->client.reset();
  this->time.advance(Seconds{1000});
  EXPECT_TRUE(this->child().isTerminated());
  EXPECT_THAT(this->results, IsEmpty());
  EXPECT_EQ(this->time.pendingCount(), 0U);
}

TYPED_TEST(QuotaClientTest, StartsNothingWhenItIsDestroyedAtOnce) {
  this->make();
  this->client->start();
  this->client.reset();
  this->time.advance(Seconds{1000});
  EXPECT_THAT(this->launcher.started(), IsEmpty());
}

TYPED_TEST(QuotaClientTest, MayBeDestroyedByItsOwnCompletion) {
  this->client = TypeParam::make(this->host(), this->executable, nullptr,
                                 [this](typename TestFixture::Result result) {
                                   this->results.push_back(std::move(result));
                                   this->client.reset();
                                 });
  this->startMade();
  this->answer();
  this->expectAnswer();
}

}  // namespace
}  // namespace vantora
