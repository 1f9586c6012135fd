// SPDX-License-Identifier: MIT
//
// An agent and those that ask it, each with a connection of its own to a bus of the test's own.
#include "platform/linux/desktop/diagnosis_service.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/deaf_bus.hpp"
#include "platform/linux/desktop/application_service.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using Outcome = AgentQuestion::Outcome;
using test::runUntil;

// The agent's end of the bus, as far as it is asked here.
struct AskedAgent {
  AskedAgent(UvLoop& loop, TaskQueue& queue, const std::string& address)
      : connection(loop.raw(), queue, address), name(connection, queue, {}) {}
  void open(UvLoop& loop) {
    connection.open();
    EXPECT_TRUE(runUntil(loop, [this] { return name.start().has_value(); }));
  }
  BusConnection connection;
  ApplicationService name;
};

class DiagnosisServiceTest : public testing::Test {
 protected:
  void ask(const std::string& address) {
    connection_ = std::make_unique<BusConnection>(loop_.raw(), *queue_, address);
    question_ = std::make_unique<AgentQuestion>(*connection_, *queue_,
                                                [this](Outcome outcome, const char* text) {
                                                  EXPECT_FALSE(outcome_) << "once";
                                                  outcome_ = outcome;
                                                  text_ = text;
                                                });
    connection_->open();
  }
  std::optional<Outcome> askAndWait() {
    ask(bus_.address());
    EXPECT_TRUE(runUntil(loop_, [this] { return outcome_.has_value(); }));
    return outcome_;
  }

  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  test::PrivateBus bus_;
  UvLoop loop_;
  std::unique_ptr<BusConnection> connection_;
  std::unique_ptr<AgentQuestion> question_;
  std::optional<Outcome> outcome_;
  std::string text_;
};

TEST_F(DiagnosisServiceTest, GivesTheAgentsAnswer) {
  AskedAgent agent(loop_, *queue_, bus_.address());
  const DiagnosisService service(agent.connection, [] { return std::string("{\"é\":1}"); });
  agent.open(loop_);
  EXPECT_EQ(askAndWait(), Outcome::answered);
  EXPECT_EQ(text_, "{\"é\":1}");
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(DiagnosisServiceTest, SaysThatThereIsNoAgent) {
  EXPECT_EQ(askAndWait(), Outcome::noAgent);
}

TEST_F(DiagnosisServiceTest, KnowsAnAgentThatDoesNotKnowTheQuestion) {
  AskedAgent agent(loop_, *queue_, bus_.address());
  agent.open(loop_);
  EXPECT_EQ(askAndWait(), Outcome::older);
}

TEST_F(DiagnosisServiceTest, WaitsTwoSecondsForAnAgentThatHangs) {
  AskedAgent agent(loop_, *queue_, bus_.address());
  agent.open(loop_);
  int calls = 0;
  BusSlot object;
  sd_bus_add_object(
      agent.connection.bus(), out(object), ApplicationService::path,
      [](sd_bus_message*, void* count, sd_bus_error*) {
        ++*static_cast<int*>(count);
        return 1;  // taken, and never answered
      },
      &calls);
  ask(bus_.address());
  ASSERT_TRUE(runUntil(loop_, [&] { return calls == 1; }));
  time_.advance(AgentQuestion::timeout - Seconds{0.001});
  EXPECT_EQ(outcome_, std::nullopt);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(outcome_, Outcome::silent);
}

TEST_F(DiagnosisServiceTest, SaysThatThereIsNoBus) {
  ask("unix:path=" + bus_.directory() + "/nowhere");
  EXPECT_EQ(outcome_, Outcome::noBus);
}

TEST_F(DiagnosisServiceTest, TakesABusThatDoesNotAnswerForNone) {
  const test::DeafBus deaf;
  ask(deaf.address());
  time_.advance(AgentQuestion::timeout);
  EXPECT_EQ(outcome_, Outcome::noBus);
}

TEST_F(DiagnosisServiceTest, IsThereAgainWhenTheBusComesBack) {
  AskedAgent agent(loop_, *queue_, bus_.address());
  const DiagnosisService service(agent.connection, [] { return std::string("again"); });
  agent.open(loop_);
  bus_.stop();
  ASSERT_TRUE(runUntil(loop_, [&] { return agent.connection.bus() == nullptr; }));
  bus_.start();
  ASSERT_TRUE(runUntil(loop_, [&] {
    time_.advance(Seconds{1});
    return agent.connection.bus() != nullptr;
  }));
  // The name is asked for anew with the connection.
  ASSERT_TRUE(runUntil(loop_, [&] {
    outcome_.reset();
    question_.reset();
    askAndWait();
    return outcome_ == Outcome::answered;
  }));
  EXPECT_EQ(text_, "again");
}

}  // namespace
}  // namespace vantora
