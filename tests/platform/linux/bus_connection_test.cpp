// SPDX-License-Identifier: MIT
#include "platform/linux/bus_connection.hpp"

#include <gtest/gtest.h>

#include "platform/linux/loop_driver.hpp"
#include "platform/linux/private_bus.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::PrivateBus;
using test::runUntil;
using test::VirtualTime;

struct Counter final : BusConnection::Listener {
  int connected = 0;
  int lost = 0;
  void busConnected(sd_bus&) override { ++connected; }
  void busLost() override { ++lost; }
};

TEST(BusConnection, WaitsLongerAfterEachFailedAttempt) {
  EXPECT_EQ(busRetryDelay(1), Seconds{1});
  EXPECT_EQ(busRetryDelay(2), Seconds{2});
  EXPECT_EQ(busRetryDelay(5), Seconds{16});
  EXPECT_EQ(busRetryDelay(6), Seconds{30});
  EXPECT_EQ(busRetryDelay(1'000'000), Seconds{30});
  EXPECT_EQ(busRetryDelay(0), Seconds{1});
}

TEST(BusConnection, TellsItsListenersOnceTheBusTookItIn) {
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
  VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, "unix:path=/nowhere/at/all");
  connection.add(counter);
  connection.open();
  EXPECT_EQ(counter.lost, 1);
  time.advance(Seconds{0.999});
  EXPECT_EQ(counter.lost, 1);
  time.advance(Seconds{0.001});
  EXPECT_EQ(counter.lost, 2);
  time.advance(Seconds{2});
  EXPECT_EQ(counter.lost, 3);
  time.advance(Seconds{4 + 8 + 16});
  EXPECT_EQ(counter.lost, 6);
  time.advance(Seconds{599.999});
  EXPECT_EQ(counter.lost, 6) << "its socket is watched for";
  time.advance(Seconds{0.001});
  EXPECT_EQ(counter.lost, 7);
  EXPECT_EQ(time.pendingCount(), 1U);
  EXPECT_EQ(counter.connected, 0);
}

TEST(BusConnection, TriesMoreOftenWhereNoSocketCanBeWatchedFor) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, "unix:abstract=vantora-test-nobody");
  connection.add(counter);
  connection.open();
  time.advance(Seconds{1 + 2 + 4 + 8 + 16});
  EXPECT_EQ(counter.lost, 6);
  time.advance(Seconds{600});
  EXPECT_EQ(counter.lost, 26) << "every 30 s in the end";
}

TEST(BusConnection, FindsABusWhoseSocketAppears) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  PrivateBus daemon;
  daemon.stop();
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, daemon.address());
  connection.add(counter);
  connection.open();
  time.advance(Seconds{100});
  EXPECT_EQ(counter.lost, 6);
  daemon.start();
  ASSERT_TRUE(
      runUntil(loop, [&time] { return time.untilNext() <= BusConnection::appearanceDelay; }));
  time.advance(BusConnection::appearanceDelay);
  ASSERT_TRUE(runUntil(loop, [&] { return counter.connected == 1; }));
  EXPECT_EQ(counter.lost, 6);
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(BusConnection, FindsABusThatStartsLater) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  PrivateBus daemon;
  daemon.stop();
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, daemon.address());
  connection.add(counter);
  connection.open();
  EXPECT_EQ(counter.lost, 1);
  daemon.start();
  time.advance(Seconds{1});
  ASSERT_TRUE(runUntil(loop, [&] { return counter.connected == 1; }));
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(BusConnection, ConnectsAgainToABusThatDiedAndCameBack) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  PrivateBus daemon;
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, daemon.address());
  connection.add(counter);
  connection.open();
  ASSERT_TRUE(runUntil(loop, [&] { return counter.connected == 1; }));
  daemon.stop();
  ASSERT_TRUE(runUntil(loop, [&] { return counter.lost == 1; }));
  EXPECT_EQ(connection.bus(), nullptr);
  time.advance(Seconds{1});
  EXPECT_EQ(counter.lost, 2) << "nobody listens yet";
  daemon.start();
  time.advance(Seconds{2});
  ASSERT_TRUE(runUntil(loop, [&] { return counter.connected == 2; }));
}

TEST(BusConnection, AsksNoMoreWhereThereIsNoAddress) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, "");
  connection.add(counter);
  connection.open();
  EXPECT_EQ(counter.lost, 1);
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(BusConnection, TellsALateListenerThatThereIsNoBus) {
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

TEST(BusConnection, TakesAnAddressThatMakesNoSense) {
  VirtualTime time;
  const auto queue = time.makeQueue();
  UvLoop loop;
  Counter counter;
  BusConnection connection(loop.raw(), *queue, "certainly not an address");
  connection.add(counter);
  connection.open();
  EXPECT_EQ(counter.lost, 1);
}

}  // namespace
}  // namespace vantora
