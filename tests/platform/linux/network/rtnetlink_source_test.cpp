// SPDX-License-Identifier: MIT
//
// The source against the real kernel: on this machine as it is, and in network
// namespaces whose links the tests make and remove.
#include "platform/linux/network/rtnetlink_source.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/network/network_namespace.hpp"
#include "sampling/network_collector.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::inNetworkNamespace;
using test::NetworkNamespace;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// The position in the table as it is now.
std::optional<std::size_t> find(NetworkSource& source, const std::string& name) {
  const auto table = source.read();
  if (!table) {
    ADD_FAILURE() << table.fault().detail;
    return std::nullopt;
  }
  for (std::size_t position = 0; position < table->size(); ++position) {
    if ((*table)[position].name == name) {
      return position;
    }
  }
  return std::nullopt;
}

NetworkInterface get(NetworkSource& source, const std::string& name) {
  const auto position = find(source, name);
  EXPECT_TRUE(position) << name << " is not in the table";
  return position ? (*source.read())[*position] : NetworkInterface{};
}

NetworkCounters count(NetworkSource& source, const std::string& name) {
  const auto position = find(source, name);
  if (!position) {
    ADD_FAILURE() << name << " is not in the table";
    return {};
  }
  const auto counters = source.counters(*position);
  EXPECT_TRUE(counters.hasValue()) << name;
  return counters ? *counters : NetworkCounters{};
}

TEST(RtnetlinkSource, ListsTheLoopbackOfThisMachine) {
  RtnetlinkSource source;
  EXPECT_FALSE(get(source, "lo").isPhysical);
}

TEST(RtnetlinkSource, ReadsTheSameCountersOverSysfsAndOverRtnetlink) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    network.setUp("up0", true);
    network.send("up0", 1000);
    RtnetlinkSource overSysfs(network.sysfsRoot());
    RtnetlinkSource overRtnetlink("/nonexistent");
    NetworkCounters first;
    NetworkCounters second;
    // The system sends a few packets of its own when a link comes up.
    for (int attempt = 0; attempt < 100; ++attempt) {
      first = count(overSysfs, "up0");
      second = count(overRtnetlink, "up0");
      if (first == second) {
        break;
      }
    }
    EXPECT_EQ(first, second);
    EXPECT_GE(first.sent, 1000U);
    EXPECT_EQ(overSysfs.mechanism(), "sysfs");
    EXPECT_EQ(overRtnetlink.mechanism(), "rtnetlink");
  });
}

TEST(RtnetlinkSource, DoesNotTakeANamesakeOfAnotherNamespaceForItsOwn) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    // The machine's own sysfs shows other links than this namespace has.
    network.addPair("eth0", 4711);
    RtnetlinkSource source("/sys");
    (void)count(source, "eth0");
    EXPECT_EQ(source.mechanism(), "rtnetlink");
  });
}

TEST(RtnetlinkSource, DoesNotTakeANamesakeOfTheSameIndexForItsOwn) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("eth0", 4711);
    // What another namespace's sysfs shows: the same name and index, another address.
    test::SysfsTree tree;
    for (const auto& [attribute, text] :
         std::vector<std::pair<std::string, std::string>>{{"ifindex", "4711"},
                                                          {"address", "02:00:5e:10:00:01"},
                                                          {"statistics/rx_bytes", "123456789"},
                                                          {"statistics/tx_bytes", "123456789"}}) {
      tree.write("class/net/eth0/" + attribute, text + "\n");
    }
    RtnetlinkSource source(tree.path(""));
    EXPECT_NE(count(source, "eth0").received, 123456789U);
    EXPECT_EQ(source.mechanism(), "rtnetlink");
  });
}

TEST(RtnetlinkSource, FollowsALinkThatComesGoesUpGetsAnAddressAndGoes) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    RtnetlinkSource source(network.sysfsRoot());
    EXPECT_FALSE(find(source, "up0"));
    network.addPair("up0");
    EXPECT_FALSE(get(source, "up0").isUp);
    network.setUp("up0", true);
    EXPECT_TRUE(get(source, "up0").isUp);
    EXPECT_THAT(source.addressedInterfaces(), Not(Contains("up0")));
    EXPECT_EQ(source.primaryInterface(), std::nullopt);
    network.addAddress("up0", "192.0.2.2");
    (void)source.read();
    EXPECT_THAT(source.addressedInterfaces(), Contains("up0"));
    network.addDefaultRoute("up0", 100);
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), "up0");
    network.remove("up0");
    EXPECT_FALSE(find(source, "up0"));
    EXPECT_THAT(source.addressedInterfaces(), Not(Contains("up0")));
    EXPECT_EQ(source.primaryInterface(), std::nullopt);
  });
}

TEST(RtnetlinkSource, FindsWhatWasThereBeforeItsFirstReading) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    network.setUp("up0", true);
    network.addAddress("up0", "192.0.2.2");
    network.addDefaultRoute("up0", 100);
    RtnetlinkSource source(network.sysfsRoot());
    EXPECT_TRUE(get(source, "up0").isUp);
    EXPECT_THAT(source.addressedInterfaces(), ElementsAre("up0"));
    EXPECT_EQ(source.primaryInterface(), "up0");
  });
}

TEST(RtnetlinkSource, TakesAPairsEndForTheUplinkWhereThereIsNoHardware) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("eth0");
    RtnetlinkSource source(network.sysfsRoot());
    EXPECT_TRUE(get(source, "eth0").isPhysical);
    EXPECT_FALSE(get(source, "lo").isPhysical);
  });
}

TEST(RtnetlinkSource, PrefersTheDefaultRouteOfTheLowestMetric) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    for (const char* name : {"up0", "up1"}) {
      network.addPair(name);
      network.setUp(name, true);
    }
    network.addDefaultRoute("up0", 600);
    network.addDefaultRoute("up1", 100);
    RtnetlinkSource source(network.sysfsRoot());
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), "up1");
    // The kernel drops the routes of a link that goes down without a word.
    network.setUp("up1", false);
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), "up0");
    network.remove("up0");
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), std::nullopt);
  });
}

TEST(RtnetlinkSource, TakesTheDefaultRouteOfIPv6WhereIPv4HasNone) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    for (const char* name : {"up0", "up1"}) {
      network.addPair(name);
      network.setUp(name, true);
    }
    RtnetlinkSource source(network.sysfsRoot());
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), std::nullopt);
    network.addDefaultRoute("up1", 100, true);
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), "up1");
    network.addDefaultRoute("up0", 600);
    (void)source.read();
    EXPECT_EQ(source.primaryInterface(), "up0");
  });
}

TEST(RtnetlinkSource, CountsThePortOfAnAddressedBridgeAsAddressedAndPrimary) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    network.setUp("up0", true);
    network.addBridge("br0", "up0");
    network.addAddress("br0", "192.0.2.2");
    network.addDefaultRoute("br0", 100);
    RtnetlinkSource source(network.sysfsRoot());
    (void)source.read();
    EXPECT_THAT(source.addressedInterfaces(), testing::UnorderedElementsAre("br0", "up0"));
    EXPECT_EQ(source.primaryInterface(), "up0");
    EXPECT_TRUE(get(source, "up0").isPhysical);
    EXPECT_FALSE(get(source, "br0").isPhysical);
  });
}

TEST(RtnetlinkSource, TakesNoLinkLocalAddressForAnAddress) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    network.setUp("up0", true);
    network.addAddress("up0", "fe80::1");
    RtnetlinkSource before(network.sysfsRoot());
    (void)before.read();
    EXPECT_THAT(before.addressedInterfaces(), IsEmpty());
    // The kernel notifies of an IPv6 address only later, after duplicate address detection.
    network.addAddress("up0", "2001:db8::1");
    RtnetlinkSource after(network.sysfsRoot());
    (void)after.read();
    EXPECT_THAT(after.addressedInterfaces(), ElementsAre("up0"));
  });
}

TEST(RtnetlinkSource, SaysThatALinkIsAbsentWhenItVanishedAfterTheTableWasRead) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    for (const std::string& root : {network.sysfsRoot(), std::string("/nonexistent")}) {
      RtnetlinkSource source(root);
      network.addPair("gone0");
      const auto position = find(source, "gone0");
      ASSERT_TRUE(position);
      ASSERT_TRUE(source.counters(*position).hasValue());
      network.remove("gone0");
      const auto counters = source.counters(*position);
      ASSERT_FALSE(counters.hasValue());
      EXPECT_EQ(counters.fault().kind, Fault::Kind::absent);
      (void)count(source, "up0");
    }
  });
}

TEST(RtnetlinkSource, CountsAnewForAnotherDeviceUnderTheSameNameAndIndex) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    constexpr std::uint32_t index = 4711;
    network.addPair("up0", index);
    network.setUp("up0", true);
    network.send("up0", 1400);
    RtnetlinkSource source(network.sysfsRoot());
    EXPECT_GE(count(source, "up0").sent, 1400U);
    network.remove("up0");
    network.addPair("up0", index);
    EXPECT_EQ(count(source, "up0"), NetworkCounters{});
    EXPECT_EQ(count(source, "up0"), NetworkCounters{});
    EXPECT_EQ(source.mechanism(), "sysfs");
  });
}

TEST(RtnetlinkSource, KeepsCountingForALinkThatIsRenamed) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    network.setUp("up0", true);
    network.send("up0", 1000);
    RtnetlinkSource source(network.sysfsRoot());
    const NetworkCounters before = count(source, "up0");
    network.setUp("up0", false);
    network.rename("up0", "wan");
    EXPECT_FALSE(find(source, "up0"));
    EXPECT_GE(count(source, "wan").sent, before.sent);
  });
}

TEST(RtnetlinkSource, ReadsEverythingAnewWhenNotificationsWereLost) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    network.addPair("up0");
    RtnetlinkSource source(network.sysfsRoot());
    EXPECT_FALSE(get(source, "up0").isUp);
    // Far more notifications of addresses than a socket holds by default, so that the one
    // of the link is lost.
    for (int address = 0; address < 1000; ++address) {
      network.addAddress("up0", "10." + std::to_string(address / 250) + "." +
                                    std::to_string(address % 250) + ".1");
    }
    network.setUp("up0", true);
    EXPECT_TRUE(get(source, "up0").isUp);
    EXPECT_THAT(source.addressedInterfaces(), ElementsAre("up0"));
  });
}

TEST(RtnetlinkSource, ReadsATableLargerThanOneAnswer) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    for (int pair = 0; pair < 40; ++pair) {
      network.addPair("up" + std::to_string(pair));
    }
    RtnetlinkSource source(network.sysfsRoot());
    EXPECT_EQ((*source.read()).size(), 81U);
    EXPECT_TRUE(find(source, "up39"));
  });
}

TEST(RtnetlinkSource, FeedsTheCollectorFromTheFirstReadingToAVanishedLinkAndBack) {
  inNetworkNamespace([](const NetworkNamespace& network) {
    test::VirtualTime time;
    RtnetlinkSource source(network.sysfsRoot());
    NetworkCollector collector(source, time);
    const auto sample = [&] {
      time.advance(Seconds{1});
      return collector.sample(std::nullopt);
    };
    const auto bringUp = [&] {
      network.addPair("eth0");
      network.setUp("eth0", true);
      network.addAddress("eth0", "192.0.2.2");
    };
    EXPECT_EQ(sample().upload.source, "Sem interface física ativa");
    bringUp();
    EXPECT_EQ(sample().upload.source, "eth0 · primeira amostra de 64 bits");
    network.send("eth0", 1000);
    network.send("eth0p", 500);
    const NetworkRates rates = sample();
    EXPECT_EQ(rates.upload.source, "eth0 · sysfs · bytes/s");
    EXPECT_GE(rates.upload.value.value_or(0), 1000.0);
    EXPECT_GE(rates.download.value.value_or(0), 500.0);
    network.remove("eth0");
    EXPECT_EQ(sample().upload.source, "Sem interface física ativa");
    EXPECT_EQ(collector.sample("eth0").upload.source, "Interface selecionada indisponível");
    bringUp();
    EXPECT_EQ(sample().upload.source, "eth0 · primeira amostra de 64 bits");
  });
}

}  // namespace
}  // namespace vantora
