// SPDX-License-Identifier: MIT
#include "process/line_conversation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::ScriptedLauncher;
using test::ScriptedProcess;
using test::VirtualTime;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t conversationLimit = 16;

class LineConversationTest : public testing::Test {
 protected:
  void start() {
    LineConversation::Events handlers;
    handlers.onLine = [this](std::string_view line) {
      events.emplace_back(line);
      if (line == "end") {
        conversation.end();
      }
    };
    handlers.onOverLimit = [this] { events.emplace_back("(over limit)"); };
    handlers.onOutputEnd = [this] { events.emplace_back("(output end)"); };
    handlers.onExit = [this] { events.emplace_back("(exit)"); };
    handlers.onInputLost = [this] { events.emplace_back("(input lost)"); };
    handlers.onErrorOutput = [this](std::string_view bytes) {
      events.push_back("(error) " + std::string(bytes));
    };
    ASSERT_TRUE(conversation.start({"/bin/child", {"now"}, {}, {}}, std::move(handlers)));
  }
  ScriptedProcess& child() { return launcher.latest(); }
  void say(std::string bytes) {
    child().output(std::move(bytes));
    time.runPosted();
  }

  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  ScriptedLauncher launcher{*queue};
  LineConversation conversation{*queue, launcher, conversationLimit};
  std::vector<std::string> events;
};

TEST_F(LineConversationTest, PassesTheChildsLinesAndEndsOn) {
  start();
  EXPECT_THAT(child().options().arguments, ElementsAre("now"));
  EXPECT_EQ(conversation.childId(), child().id());
  say("one\ntwo\nthr");
  child().errorOutput("oh");
  child().loseInput();
  child().endOutput();
  child().exit();
  time.runPosted();
  EXPECT_THAT(events,
              ElementsAre("one", "two", "(error) oh", "(input lost)", "(output end)", "(exit)"));
  EXPECT_FALSE(conversation.isOver()) << "what an end means is the client's";
}

TEST_F(LineConversationTest, SendsLines) {
  start();
  EXPECT_TRUE(conversation.send("{}"));
  EXPECT_TRUE(conversation.send(""));
  EXPECT_EQ(child().input(), "{}\n\n");
  child().closeInput();
  EXPECT_FALSE(conversation.send("{}"));
}

TEST_F(LineConversationTest, CannotSendBeforeItStarted) {
  EXPECT_FALSE(conversation.send("{}"));
}

TEST_F(LineConversationTest, ReportsAChildThatCouldNotBeStarted) {
  launcher.failStarts(Fault::absent());
  EXPECT_FALSE(conversation.start({"/bin/child", {}, {}, {}}, {}));
  EXPECT_TRUE(conversation.end());
}

TEST_F(LineConversationTest, ReportsThatTooMuchWaits) {
  start();
  say(std::string(conversationLimit, 'x'));
  EXPECT_THAT(events, IsEmpty());
  say("\n");
  EXPECT_THAT(events, ElementsAre("(over limit)"));
}

TEST_F(LineConversationTest, EndsOnce) {
  start();
  EXPECT_TRUE(conversation.end());
  EXPECT_FALSE(conversation.end());
  EXPECT_TRUE(conversation.isOver());
  EXPECT_TRUE(child().isTerminated());
  EXPECT_TRUE(conversation.send("nobody minds"));
  EXPECT_EQ(child().input(), "");
}

TEST_F(LineConversationTest, TakesNoFurtherLineOnceAnEventEndedIt) {
  start();
  say("one\nend\ntwo\n");
  say("three\n");
  EXPECT_THAT(events, ElementsAre("one", "end"));
}

TEST_F(LineConversationTest, KeepsOneDeadline) {
  start();
  conversation.setDeadline(Seconds{1}, [this] { events.emplace_back("first"); });
  conversation.setDeadline(Seconds{2}, [this] { events.emplace_back("second"); });
  time.advance(Seconds{1.999});
  EXPECT_THAT(events, IsEmpty());
  time.advance(Seconds{0.001});
  EXPECT_THAT(events, ElementsAre("second"));
  time.advance(Seconds{100});
  EXPECT_EQ(events.size(), 1U);
}

TEST_F(LineConversationTest, HasNoDeadlineOnceItIsOver) {
  start();
  conversation.setDeadline(Seconds{1}, [this] { events.emplace_back("late"); });
  conversation.end();
  conversation.setDeadline(Seconds{1}, [this] { events.emplace_back("late"); });
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(LineConversationTest, EndsTheChildWhenItIsDestroyed) {
  {
    LineConversation other(*queue, launcher, conversationLimit);
    ASSERT_TRUE(other.start({"/bin/child", {}, {}, {}}, {}));
  }
  EXPECT_TRUE(child().isTerminated());
}

}  // namespace
}  // namespace vantora
