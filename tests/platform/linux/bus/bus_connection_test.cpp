// SPDX-License-Identifier: MIT
#include "platform/linux/bus/bus_connection.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/bus/bus_slot.hpp"
#include "platform/linux/bus/deaf_bus.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::DeafBus;
using test::PrivateBus;
using test::runUntil;
using test::VirtualTime;

struct Counter final : BusConnection::Listener {
  int connected = 0;
  int lost = 0;
  void busConnected(sd_bus&) override { ++connected; }
  void busLost() override { ++lost; }
};

// A connection that was opened, and how often it was made and lost.
struct Opened {
  explicit Opened(std::string address) : connection(loop.raw(), *queue, std::move(address)) {
    connection.add(counter);
    connection.open();
  }
  bool untilConnected(int times) {
    return runUntil(loop, [&] { return counter.connected == times; });
  }

  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  UvLoop loop;
  Counter counter;
  BusConnection connection;
};

TEST(BusConnection, WaitsLongerAfterEachFailedAttempt) {
  EXPECT_EQ(busRetryDelay(1), Seconds{1});
  EXPECT_EQ(busRetryDelay(2), Seconds{2});
  EXPECT_EQ(busRetryDelay(5), Seconds{16});
  EXPECT_EQ(busRetryDelay(6), Seconds{30});
  EXPECT_EQ(busRetryDelay(1'000'000), Seconds{30});
  EXPECT_EQ(busRetryDelay(0), Seconds{1});
}

TEST(BusConnection, CallsItsListenersOnceTheBusAcceptedIt) {
  PrivateBus daemon;
  UvLoop loop;
  Counter early;
  Counter late;
  {
    BusConnection connection(loop.raw(), loop.queue(), daemon.address());
    connection.add(early);
    EXPECT_EQ(connection.bus(), nullptr);
    connection.open();
    EXPECT_EQ(early.connected, 0) << "never inside of open()";
    ASSERT_TRUE(runUntil(loop, [&] { return early.connected == 1; }));
    EXPECT_NE(connection.bus(), nullptr);
    connection.add(late);
    EXPECT_EQ(late.connected, 1);
  }
  EXPECT_EQ(early.lost, 0);
}

TEST(BusConnection, TriesAtGrowingIntervalsWhileThereIsNoBus) {
  Opened bus("unix:path=/nowhere/at/all");
  EXPECT_EQ(bus.counter.lost, 1);
  bus.time.advance(Seconds{0.999});
  EXPECT_EQ(bus.counter.lost, 1);
  bus.time.advance(Seconds{0.001});
  EXPECT_EQ(bus.counter.lost, 2);
  bus.time.advance(Seconds{2});
  EXPECT_EQ(bus.counter.lost, 3);
  bus.time.advance(Seconds{4 + 8 + 16});
  EXPECT_EQ(bus.counter.lost, 6);
  bus.time.advance(Seconds{600});
  EXPECT_EQ(bus.counter.lost, 26) << "every 30 s in the end";
  EXPECT_EQ(bus.time.pendingCount(), 1U);
  EXPECT_EQ(bus.counter.connected, 0);
}

TEST(BusConnection, FindsABusThatStartsLater) {
  PrivateBus daemon;
  daemon.stop();
  Opened bus(daemon.address());
  EXPECT_EQ(bus.counter.lost, 1);
  daemon.start();
  bus.time.advance(Seconds{1});
  ASSERT_TRUE(bus.untilConnected(1));
  EXPECT_EQ(bus.time.pendingCount(), 0U);
}

TEST(BusConnection, ConnectsAgainToABusThatDiedAndCameBack) {
  PrivateBus daemon;
  Opened bus(daemon.address());
  ASSERT_TRUE(bus.untilConnected(1));
  daemon.stop();
  ASSERT_TRUE(runUntil(bus.loop, [&] { return bus.counter.lost == 1; }));
  EXPECT_EQ(bus.connection.bus(), nullptr);
  bus.time.advance(Seconds{1});
  EXPECT_EQ(bus.counter.lost, 2) << "no daemon listens yet";
  daemon.start();
  bus.time.advance(Seconds{2});
  ASSERT_TRUE(bus.untilConnected(2));
}

// Gives the process a session's environment for the time of a test.
class SessionEnvironment {
 public:
  SessionEnvironment(const char* busAddress, const char* runtimeDirectory)
      : busAddress_("DBUS_SESSION_BUS_ADDRESS", busAddress),
        runtimeDirectory_("XDG_RUNTIME_DIR", runtimeDirectory) {}

 private:
  class Variable {
   public:
    Variable(const char* name, const char* value) : name_(name) {
      if (const char* before = std::getenv(name)) {
        before_ = before;
      }
      set(value);
    }
    ~Variable() { set(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

   private:
    void set(const char* value) const {
      value != nullptr ? setenv(name_, value, 1) : unsetenv(name_);
    }
    const char* name_;
    std::optional<std::string> before_;
  };
  Variable busAddress_;
  Variable runtimeDirectory_;
};

TEST(BusConnection, FindsTheSessionsBusByItsAddress) {
  PrivateBus daemon;
  const SessionEnvironment environment(daemon.address().c_str(), nullptr);
  Opened bus("");
  ASSERT_TRUE(bus.untilConnected(1));
  EXPECT_EQ(bus.connection.address(), daemon.address());
}

TEST(BusConnection, FindsTheSessionsBusInTheRuntimeDirectory) {
  PrivateBus daemon;
  const SessionEnvironment environment(nullptr, daemon.directory().c_str());
  Opened bus("");
  ASSERT_TRUE(bus.untilConnected(1));
  EXPECT_FALSE(bus.connection.address().empty());
}

TEST(BusConnection, TriesOnceWhereTheSessionNamesNoBus) {
  const SessionEnvironment environment(nullptr, nullptr);
  Opened bus("");
  EXPECT_EQ(bus.counter.lost, 1);
  EXPECT_EQ(bus.time.pendingCount(), 0U);
  EXPECT_EQ(bus.connection.address(), "");
}

TEST(BusConnection, CallsALateListenerWithoutABus) {
  const SessionEnvironment environment(nullptr, nullptr);
  VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  for (const char* address : {"", "unix:path=/nowhere/at/all"}) {
    Counter early;
    Counter late;
    BusConnection connection(loop.raw(), *queue, address);
    connection.add(early);
    EXPECT_EQ(early.lost, 0) << "no attempt was made";
    connection.open();
    connection.add(late);
    EXPECT_EQ(late.lost, 1);
  }
}

// Answers each call with as much as a wide picture.
struct Answerer final : BusConnection::Listener {
  void busConnected(sd_bus& bus) override {
    sd_bus_add_object_vtable(&bus, out(object), DeafBus::path, DeafBus::interface, table, this);
  }
  void busLost() override {
    object.reset();
    isLost = true;
  }
  static int answer(sd_bus_message* call, void* self, sd_bus_error*) {
    ++static_cast<Answerer*>(self)->answers;
    static const std::string text(16'000, 'x');
    return sd_bus_reply_method_return(call, "s", text.c_str());
  }
  static constexpr sd_bus_vtable table[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD(DeafBus::member, "", "s", answer, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END,
  };
  BusSlot object;
  int answers = 0;
  bool isLost = false;
};

struct DeafBusTest : testing::Test {
  void SetUp() override {
    connection.add(listener);
    connection.open();
    ASSERT_TRUE(runUntil(loop, [&] {
      bus.takeIn();
      return connection.bus() != nullptr;
    }));
  }
  std::uint64_t unsent() {
    std::uint64_t count = 0;
    sd_bus_get_n_queued_write(connection.bus(), &count);
    return count;
  }
  UvLoop loop;
  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> queue = time.makeQueue();
  DeafBus bus;
  Answerer listener;
  BusConnection connection{loop.raw(), *queue, bus.address()};
};

TEST_F(DeafBusTest, LeavesCallsUnreadWhileItsAnswersAreNotTaken) {
  int answersBefore = -1;
  int turnsWithoutAnswer = 0;
  std::uint64_t most = 0;
  ASSERT_TRUE(runUntil(loop, [&] {
    bus.call();
    most = std::max(most, unsent());
    turnsWithoutAnswer = listener.answers == answersBefore ? turnsWithoutAnswer + 1 : 0;
    answersBefore = listener.answers;
    return listener.answers > 0 && (turnsWithoutAnswer > 5 || listener.answers > 2'000);
  }));
  EXPECT_GT(listener.answers, 0);
  EXPECT_LE(most, BusConnection::maxUnsentWhileReading + 1);
  EXPECT_GT(bus.call(), static_cast<std::size_t>(listener.answers)) << "more was asked";
  EXPECT_FALSE(listener.isLost);
}

TEST_F(DeafBusTest, GivesUpABusThatTakesNothing) {
  for (std::uint64_t count = 0; !listener.isLost && count < 100'000; ++count) {
    sd_bus_emit_signal(connection.bus(), DeafBus::path, DeafBus::interface, "Signal", "");
    ASSERT_LE(unsent(), BusConnection::maxUnsent + 1);
    uv_run(&loop.raw(), UV_RUN_NOWAIT);
  }
  EXPECT_TRUE(listener.isLost);
  EXPECT_EQ(time.pendingCount(), 1U) << "the next attempt";
}

TEST(BusConnection, TakesAnAddressThatMakesNoSense) {
  Opened bus("certainly not an address");
  EXPECT_EQ(bus.counter.lost, 1);
}

}  // namespace
}  // namespace vantora
