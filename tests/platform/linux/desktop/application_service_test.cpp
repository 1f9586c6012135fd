// SPDX-License-Identifier: MIT
//
// Agents of one session, each with a connection of its own to a bus of the test's own.
#include "platform/linux/desktop/application_service.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/linux/bus_call.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::BusMessage;
using test::BusTarget;
using test::callAndWait;
using test::isError;
using test::PrivateBus;
using test::runUntil;
using test::VirtualQueue;
using test::VirtualTime;

// An agent's end of the bus. Destroying it drops the connection, as a crash does.
struct Agent {
  Agent(UvLoop& loop, TaskQueue& queue, const std::string& address, LaunchTokens tokens = {})
      : connection(loop.raw(), queue, address), service(connection, queue, std::move(tokens)) {
    service.onActivate = [this](const std::string& token) {
      activations.push_back(token);
      return showsWindow;
    };
    service.onRival = [this] { ++rivals; };
    connection.open();
  }
  BusConnection connection;
  ApplicationService service;
  std::vector<std::string> activations;
  int rivals = 0;
  bool showsWindow = true;
};

// Something that has the name and answers as the test says.
struct ScriptedOwner final : BusConnection::Listener {
  enum class Answer { silence, unknownMethod, leave };
  ScriptedOwner(UvLoop& loop, TaskQueue& queue, const std::string& address, Answer givenAnswer)
      : connection(loop.raw(), queue, address), answer(givenAnswer) {
    connection.add(*this);
    connection.open();
    EXPECT_TRUE(runUntil(loop, [this] { return ownsName; }));
  }
  ~ScriptedOwner() override { connection.remove(*this); }
  void busConnected(sd_bus& bus) override {
    sd_bus_add_object(&bus, out(object), ApplicationService::path, onCall, this);
    sd_bus_request_name_async(
        &bus, out(nameCall), ApplicationService::name, 0,
        [](sd_bus_message*, void* self, sd_bus_error*) {
          static_cast<ScriptedOwner*>(self)->ownsName = true;
          return 0;
        },
        this);
  }
  void busLost() override {}
  static int onCall(sd_bus_message* call, void* self, sd_bus_error*) {
    auto* owner = static_cast<ScriptedOwner*>(self);
    ++owner->calls;
    switch (owner->answer) {
      case Answer::silence:
        return 1;
      case Answer::unknownMethod:
        return 0;
      case Answer::leave:
        sd_bus_release_name_async(
            sd_bus_message_get_bus(call), nullptr, ApplicationService::name,
            [](sd_bus_message*, void*, sd_bus_error*) { return 0; }, nullptr);
        return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_NO_REPLY, "Gone");
    }
    return 0;
  }
  BusConnection connection;
  Answer answer;
  bool ownsName = false;
  int calls = 0;
  BusSlot object;
  BusSlot nameCall;
};

class ApplicationServiceTest : public testing::Test {
 protected:
  std::unique_ptr<Agent> startAgent(LaunchTokens tokens = {}) {
    return std::make_unique<Agent>(loop_, *queue_, bus_.address(), std::move(tokens));
  }
  std::unique_ptr<Agent> startAndDecide(LaunchTokens tokens = {}) {
    auto agent = startAgent(std::move(tokens));
    EXPECT_TRUE(runUntil(loop_, [&] { return agent->service.start().has_value(); }));
    return agent;
  }
  bool ownsName(Agent& agent) {
    const BusMessage answer =
        callAndWait(loop_, agent.connection.bus(), {busName, "/org/freedesktop/DBus", busName},
                    "GetNameOwner", "s", ApplicationService::name);
    const char* owner = "";
    const char* own = "";
    return !isError(answer) && sd_bus_message_read(answer.get(), "s", &owner) > 0 &&
           sd_bus_get_unique_name(agent.connection.bus(), &own) >= 0 && std::string(owner) == own;
  }

  static constexpr const char* busName = "org.freedesktop.DBus";
  const BusTarget target_{ApplicationService::name, ApplicationService::path,
                          ApplicationService::interface};
  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  PrivateBus bus_;
  UvLoop loop_;
};

TEST_F(ApplicationServiceTest, TakesTheNameAndLeavesNothingScheduled) {
  const auto agent = startAgent();
  EXPECT_EQ(agent->service.start(), std::nullopt) << "the bus has not answered yet";
  ASSERT_TRUE(runUntil(loop_, [&] { return agent->service.start().has_value(); }));
  EXPECT_EQ(agent->service.start(), ApplicationStart::first);
  EXPECT_TRUE(ownsName(*agent));
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(ApplicationServiceTest, ASecondStartAsksTheFirstToShowItsWindow) {
  const auto first = startAndDecide();
  const auto second = startAndDecide({.activation = "wayland-1", .startupId = "x11-1"});
  EXPECT_EQ(second->service.start(), ApplicationStart::another);
  EXPECT_EQ(first->activations, std::vector<std::string>{"wayland-1"});
  EXPECT_TRUE(second->activations.empty());
  EXPECT_EQ(second->rivals, 0);
  EXPECT_TRUE(ownsName(*first));
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(ApplicationServiceTest, PassesOnWhateverTokenThereIs) {
  const auto first = startAndDecide();
  startAndDecide({.activation = "", .startupId = "x11-1"});
  startAndDecide();
  EXPECT_EQ(first->activations, (std::vector<std::string>{"x11-1", ""}));
}

TEST_F(ApplicationServiceTest, ANameThatACrashLeftIsTakenByTheNextStart) {
  auto first = startAndDecide();
  first.reset();
  const auto next = startAndDecide();
  EXPECT_EQ(next->service.start(), ApplicationStart::first);
  EXPECT_TRUE(ownsName(*next));
}

TEST_F(ApplicationServiceTest, TakesTheNameOfAnOwnerThatEndsWhileItIsAsked) {
  const ScriptedOwner owner(loop_, *queue_, bus_.address(), ScriptedOwner::Answer::leave);
  const auto agent = startAndDecide();
  EXPECT_EQ(owner.calls, 1);
  EXPECT_EQ(agent->service.start(), ApplicationStart::first);
  EXPECT_TRUE(ownsName(*agent));
}

TEST_F(ApplicationServiceTest, DoesNotWaitForeverForAnOwnerThatIsSilent) {
  const ScriptedOwner owner(loop_, *queue_, bus_.address(), ScriptedOwner::Answer::silence);
  const auto agent = startAgent();
  ASSERT_TRUE(runUntil(loop_, [&] { return owner.calls == 1; }));
  EXPECT_EQ(agent->service.start(), std::nullopt);
  time_.advance(ApplicationService::startTimeout);
  EXPECT_EQ(agent->service.start(), ApplicationStart::silentAnother);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(ApplicationServiceTest, ReportsAnOwnerThatDoesNotUnderstand) {
  const ScriptedOwner owner(loop_, *queue_, bus_.address(), ScriptedOwner::Answer::unknownMethod);
  const auto agent = startAndDecide();
  EXPECT_EQ(agent->service.start(), ApplicationStart::silentAnother);
}

TEST_F(ApplicationServiceTest, StartsWithoutWaitingForABusThatSaysNothing) {
  const auto agent = startAgent();
  time_.advance(ApplicationService::startTimeout);
  EXPECT_EQ(agent->service.start(), ApplicationStart::first);
  ASSERT_TRUE(runUntil(loop_, [&] { return agent->connection.bus() != nullptr; }));
  EXPECT_TRUE(ownsName(*agent)) << "the bus has come round";
}

TEST_F(ApplicationServiceTest, StartsAtOnceWhereThereIsNoBus) {
  const Agent agent(loop_, *queue_, "unix:path=/nowhere/at/all");
  EXPECT_EQ(agent.service.start(), ApplicationStart::first);
  EXPECT_EQ(time_.pendingCount(), 1U) << "only the connection's next attempt";
}

TEST_F(ApplicationServiceTest, TakesTheNameOfABusThatComesLater) {
  bus_.stop();
  const auto agent = startAgent();
  EXPECT_EQ(agent->service.start(), ApplicationStart::first);
  bus_.start();
  time_.advance(Seconds{1});
  ASSERT_TRUE(runUntil(loop_, [&] { return agent->connection.bus() != nullptr; }));
  EXPECT_TRUE(ownsName(*agent));
  EXPECT_EQ(agent->rivals, 0);
}

TEST_F(ApplicationServiceTest, TakesTheNameAgainWhenTheBusReturns) {
  const auto agent = startAndDecide();
  bus_.stop();
  ASSERT_TRUE(runUntil(loop_, [&] { return agent->connection.bus() == nullptr; }));
  EXPECT_EQ(agent->service.start(), ApplicationStart::first);
  bus_.start();
  time_.advance(Seconds{1});
  ASSERT_TRUE(runUntil(loop_, [&] { return agent->connection.bus() != nullptr; }));
  EXPECT_TRUE(ownsName(*agent));
  const auto second = startAndDecide({.activation = "again", .startupId = ""});
  EXPECT_EQ(second->service.start(), ApplicationStart::another);
  EXPECT_EQ(agent->activations, std::vector<std::string>{"again"});
}

TEST_F(ApplicationServiceTest, GoesOnBesideARivalAndFollowsIt) {
  bus_.stop();
  const auto older = startAgent();
  bus_.start();
  auto rival = startAndDecide();
  ASSERT_EQ(rival->service.start(), ApplicationStart::first);
  time_.advance(Seconds{1});
  ASSERT_TRUE(runUntil(loop_, [&] { return older->rivals == 1; }));
  EXPECT_EQ(older->service.start(), ApplicationStart::first);
  EXPECT_TRUE(rival->activations.empty()) << "no window was requested";
  EXPECT_TRUE(ownsName(*rival));
  rival.reset();
  ASSERT_TRUE(runUntil(loop_, [&] { return ownsName(*older); }));
  EXPECT_EQ(older->rivals, 1);
  const auto next = startAndDecide();
  EXPECT_EQ(next->service.start(), ApplicationStart::another);
}

TEST_F(ApplicationServiceTest, OpeningFilesIsAStartWithoutThem) {
  const auto agent = startAndDecide();
  const auto caller = startAndDecide();
  agent->activations.clear();
  const BusMessage answer =
      callAndWait(loop_, caller->connection.bus(), target_, "Open", "asa{sv}", 1, "file:///a", 2,
                  "desktop-startup-id", "s", "id", "other", "as", 1, "x");
  EXPECT_FALSE(isError(answer));
  EXPECT_EQ(agent->activations, std::vector<std::string>{"id"});
}

TEST_F(ApplicationServiceTest, HasNoActions) {
  const auto agent = startAndDecide();
  const auto caller = startAndDecide();
  agent->activations.clear();
  const BusMessage answer = callAndWait(loop_, caller->connection.bus(), target_, "ActivateAction",
                                        "sava{sv}", "quit", 0, 0);
  EXPECT_TRUE(isError(answer));
  EXPECT_TRUE(agent->activations.empty());
}

TEST_F(ApplicationServiceTest, TakesATokenOfAnotherTypeForNone) {
  const auto agent = startAndDecide();
  const auto caller = startAndDecide();
  agent->activations.clear();
  const BusMessage answer = callAndWait(loop_, caller->connection.bus(), target_, "Activate",
                                        "a{sv}", 1, "activation-token", "u", 7U);
  EXPECT_FALSE(isError(answer));
  EXPECT_EQ(agent->activations, std::vector<std::string>{""});
}

TEST_F(ApplicationServiceTest, SaysThatItHasOnlyJustStarted) {
  const auto agent = startAndDecide();
  agent->showsWindow = false;
  EXPECT_EQ(startAndDecide()->service.start(), ApplicationStart::startingAnother);
  agent->showsWindow = true;
  EXPECT_EQ(startAndDecide()->service.start(), ApplicationStart::another);
  agent->service.onActivate = nullptr;
  EXPECT_EQ(startAndDecide()->service.start(), ApplicationStart::startingAnother);
}

TEST(LaunchTokens, LeaveOutWhatCannotGoOnTheBus) {
  const LaunchTokens tokens = LaunchTokens::from("good_TIME123", "bad\xff");
  EXPECT_EQ(tokens.activation, "good_TIME123");
  EXPECT_EQ(tokens.startupId, "");
  EXPECT_EQ(LaunchTokens::from(nullptr, "x/y-1").startupId, "x/y-1");
}

}  // namespace
}  // namespace vantora
