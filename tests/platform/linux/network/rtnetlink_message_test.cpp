// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_message.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <sys/socket.h>

#include <array>

#include "platform/linux/network/netlink_builder.hpp"

namespace vantora {
namespace {

using namespace Rtnetlink;
using test::NetlinkBuilder;
using testing::ElementsAre;
using testing::IsEmpty;

ifinfomsg linkHeader(int index, unsigned flags = 0x1003, std::uint16_t type = ARPHRD_ETHER) {
  ifinfomsg header{};
  header.ifi_index = index;
  header.ifi_flags = flags;
  header.ifi_type = type;
  return header;
}

ifaddrmsg addressHeader(std::uint8_t family, std::uint32_t index) {
  ifaddrmsg header{};
  header.ifa_family = family;
  header.ifa_index = index;
  return header;
}

rtmsg routeHeader() {
  rtmsg header{};
  header.rtm_family = AF_INET;
  header.rtm_table = RT_TABLE_MAIN;
  header.rtm_type = RTN_UNICAST;
  return header;
}

constexpr std::array<std::uint8_t, 4> address4{192, 0, 2, 2};
using Address6 = std::array<std::uint8_t, 16>;

// Walking.

TEST(RtnetlinkMessageReader, GivesEachMessageWithItsPayload) {
  const auto bytes = NetlinkBuilder(7)
                         .begin(RTM_NEWLINK, std::uint32_t{1}, NLM_F_MULTI)
                         .begin(RTM_DELLINK, std::uint64_t{2})
                         .bytes();
  MessageReader reader(bytes);
  const auto first = reader.next();
  ASSERT_TRUE(first);
  EXPECT_EQ(first->type, RTM_NEWLINK);
  EXPECT_EQ(first->flags, NLM_F_MULTI);
  EXPECT_EQ(first->sequence, 7U);
  EXPECT_EQ(first->payload.size(), 4U);
  EXPECT_EQ(reader.next()->payload.size(), 8U);
  EXPECT_FALSE(reader.next());
  EXPECT_TRUE(reader.isIntact());
}

TEST(RtnetlinkMessageReader, StopsAtEveryPlaceWhereAMessageIsCutOff) {
  const auto bytes = NetlinkBuilder().begin(RTM_NEWLINK, linkHeader(1)).bytes();
  for (std::size_t size = 1; size < bytes.size(); ++size) {
    MessageReader reader(Bytes(bytes).first(size));
    EXPECT_FALSE(reader.next()) << size;
    EXPECT_FALSE(reader.isIntact()) << size;
    EXPECT_FALSE(reader.next()) << size;
  }
}

TEST(RtnetlinkMessageReader, StopsAtALengthThatIsNone) {
  for (const std::uint32_t length : {0U, 1U, 15U, 33U, 0xFFFF'FFFFU}) {
    auto builder = NetlinkBuilder().begin(RTM_NEWLINK, linkHeader(1));
    std::memcpy(builder.bytes().data(), &length, sizeof length);
    MessageReader reader(builder.bytes());
    EXPECT_FALSE(reader.next()) << length;
    EXPECT_FALSE(reader.isIntact()) << length;
  }
}

TEST(RtnetlinkMessageReader, TakesALastMessageWithoutPadding) {
  auto bytes = NetlinkBuilder().begin(RTM_NEWLINK, std::uint8_t{1}).bytes();
  const std::uint32_t length = 17;
  std::memcpy(bytes.data(), &length, sizeof length);
  bytes.resize(length);
  MessageReader reader(bytes);
  EXPECT_EQ(reader.next()->payload.size(), 1U);
  EXPECT_TRUE(reader.isIntact());
}

TEST(RtnetlinkMessageReader, ReadsTheErrnoOfAnError) {
  const auto error = [](std::int32_t value) {
    const auto bytes = NetlinkBuilder().begin(NLMSG_ERROR, value).bytes();
    return parseError(*MessageReader(bytes).next());
  };
  EXPECT_EQ(error(-ENODEV), ENODEV);
  EXPECT_EQ(error(0), 0);
  EXPECT_EQ(error(5), 0);
  EXPECT_EQ(error(-5000), 0);
  EXPECT_EQ(error(std::numeric_limits<std::int32_t>::min()), 0);
}

TEST(RtnetlinkMessageReader, ReadsNoErrnoInAnErrorThatIsCutOff) {
  EXPECT_EQ(parseError({NLMSG_ERROR, 0, 0, {}}), 0);
}

// Links.

TEST(RtnetlinkLinks, TakesIndexTypeFlagsNameAndKindInTheirOrder) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWLINK, linkHeader(1, 0x49, ARPHRD_LOOPBACK))
                         .addText(IFLA_IFNAME, "lo")
                         .begin(RTM_NEWLINK, linkHeader(7, 0x1002))
                         .addNumber(IFLA_MTU, 1500)
                         .addText(IFLA_IFNAME, "br0")
                         .addNestedText(IFLA_LINKINFO, IFLA_INFO_KIND, "bridge")
                         .bytes();
  EXPECT_THAT(parseLinks(bytes), ElementsAre(Link{1, ARPHRD_LOOPBACK, 0x49, "lo", ""},
                                             Link{7, ARPHRD_ETHER, 0x1002, "br0", "bridge"}));
}

TEST(RtnetlinkLinks, TakesTheAddressAsSysfsWritesIt) {
  const std::array<std::uint8_t, 6> address{0x02, 0x00, 0x5E, 0x10, 0xAB, 0x01};
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWLINK, linkHeader(4))
                         .addText(IFLA_IFNAME, "eth0")
                         .add(IFLA_ADDRESS, std::as_bytes(std::span(address)))
                         .bytes();
  EXPECT_EQ(parseLinks(bytes).at(0).address, "02:00:5e:10:ab:01");
}

TEST(RtnetlinkLinks, KnowsWhatALinkStandsOn) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWLINK, linkHeader(4))
                         .addText(IFLA_IFNAME, "eth0")
                         .addNumber(IFLA_MASTER, 7)
                         .begin(RTM_NEWLINK, linkHeader(5))
                         .addText(IFLA_IFNAME, "eth0.5")
                         .addNumber(IFLA_LINK, 4)
                         .begin(RTM_NEWLINK, linkHeader(6))
                         .addText(IFLA_IFNAME, "elsewhere")
                         .addNumber(IFLA_LINK, 4)
                         .addNumber(IFLA_LINK_NETNSID, 0)
                         .bytes();
  const std::vector<Link> links = parseLinks(bytes);
  EXPECT_EQ(links.at(0).upper, 7U);
  EXPECT_EQ(links.at(0).lower, 0U);
  EXPECT_EQ(links.at(1).lower, 4U);
  EXPECT_EQ(links.at(2).lower, 0U);  // of another namespace
}

TEST(RtnetlinkLinks, KnowsThePortThatABondUses) {
  const auto link = [](std::string_view kind) {
    const auto attributes = [](auto add) {
      NetlinkBuilder builder;
      builder.begin(0, std::uint32_t{0});
      add(builder);
      constexpr std::size_t before = sizeof(nlmsghdr) + sizeof(std::uint32_t);
      return std::vector<std::byte>(builder.bytes().begin() + before, builder.bytes().end());
    };
    const auto data =
        attributes([](NetlinkBuilder& builder) { builder.addNumber(IFLA_BOND_ACTIVE_SLAVE, 4); });
    const auto info = attributes([&](NetlinkBuilder& builder) {
      builder.addText(IFLA_INFO_KIND, kind).add(IFLA_INFO_DATA, data);
    });
    return parseLinks(NetlinkBuilder()
                          .begin(RTM_NEWLINK, linkHeader(7))
                          .addText(IFLA_IFNAME, "bond0")
                          .add(IFLA_LINKINFO, info)
                          .bytes())
        .at(0);
  };
  EXPECT_EQ(link("bond").active, 4U);
  EXPECT_EQ(link("bridge").active, 0U);  // the same number means something else there
}

TEST(RtnetlinkLinks, TakesTheNestingFlagForNoPartOfTheType) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWLINK, linkHeader(7))
                         .addText(IFLA_IFNAME, "v0")
                         .addNestedText(IFLA_LINKINFO | NLA_F_NESTED, IFLA_INFO_KIND, "veth")
                         .bytes();
  EXPECT_EQ(parseLinks(bytes).at(0).kind, "veth");
}

TEST(RtnetlinkLinks, PassesOverOtherMessagesAndLinksWithoutNameOrIndex) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_DELLINK, linkHeader(1))
                         .addText(IFLA_IFNAME, "gone")
                         .begin(RTM_NEWLINK, linkHeader(2))
                         .begin(RTM_NEWLINK, linkHeader(3))
                         .addText(IFLA_IFNAME, "")
                         .begin(RTM_NEWLINK, linkHeader(0))
                         .addText(IFLA_IFNAME, "none")
                         .begin(RTM_NEWLINK, linkHeader(-1))
                         .addText(IFLA_IFNAME, "negative")
                         .begin(RTM_NEWLINK, std::uint32_t{9})
                         .begin(RTM_NEWLINK, linkHeader(4))
                         .addText(IFLA_IFNAME, "eth0")
                         .bytes();
  EXPECT_THAT(parseLinks(bytes), ElementsAre(testing::Field(&Link::name, "eth0")));
}

TEST(RtnetlinkLinks, EndsANameWithItsAttributeWhereNoZeroByteDoes) {
  constexpr std::string_view name = "eth0";
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWLINK, linkHeader(4))
                         .add(IFLA_IFNAME, std::as_bytes(std::span(name)))
                         .bytes();
  EXPECT_EQ(parseLinks(bytes).at(0).name, "eth0");
}

TEST(RtnetlinkLinks, KeepsTheBytesOfANameAsTheyAre) {
  const auto bytes =
      NetlinkBuilder().begin(RTM_NEWLINK, linkHeader(4)).addText(IFLA_IFNAME, "w\xFF").bytes();
  EXPECT_EQ(parseLinks(bytes).at(0).name, "w\xFF");
}

TEST(RtnetlinkLinks, StopsAtAnAttributeWhoseLengthIsNone) {
  for (const int length : {0, 3, 0xFFFF}) {
    auto builder = NetlinkBuilder()
                       .begin(RTM_NEWLINK, linkHeader(4))
                       .addNumber(IFLA_MTU, 1500)
                       .addText(IFLA_IFNAME, "eth0");
    const auto written = static_cast<std::uint16_t>(length);
    std::memcpy(builder.bytes().data() + sizeof(nlmsghdr) + sizeof(ifinfomsg), &written,
                sizeof written);
    EXPECT_THAT(parseLinks(builder.bytes()), IsEmpty()) << length;
  }
}

TEST(RtnetlinkLinks, KeepsWhatWholeMessagesSaidBeforeBrokenBytes) {
  auto bytes =
      NetlinkBuilder().begin(RTM_NEWLINK, linkHeader(4)).addText(IFLA_IFNAME, "eth0").bytes();
  bytes.resize(bytes.size() + 9, std::byte{0xFF});
  EXPECT_EQ(parseLinks(bytes).size(), 1U);
}

// Addresses.

TEST(RtnetlinkAddresses, TakesEveryIPv4Address) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWADDR, addressHeader(AF_INET, 4))
                         .addNumber(IFA_ADDRESS, address4)
                         .begin(RTM_NEWADDR, addressHeader(AF_INET, 1))
                         .addNumber(IFA_LOCAL, address4)
                         .begin(RTM_NEWADDR, addressHeader(AF_INET, 4))
                         .addNumber(IFA_ADDRESS, address4)
                         .bytes();
  EXPECT_THAT(parseAddressedLinks(bytes), ElementsAre(1U, 4U));
}

TEST(RtnetlinkAddresses, TakesIPv6AddressesOutsideOfTheLinkLocalPrefix) {
  NetlinkBuilder builder;
  const std::array<std::pair<std::uint8_t, std::uint8_t>, 8> beginnings{{{0xFE, 0x80},
                                                                         {0xFE, 0xBF},
                                                                         {0xFE, 0xC0},
                                                                         {0xFE, 0x7F},
                                                                         {0xFF, 0x80},
                                                                         {0x20, 0x01},
                                                                         {0xFD, 0x00},
                                                                         {0x00, 0x00}}};
  std::uint32_t index = 0;
  for (const auto& [first, second] : beginnings) {
    builder.begin(RTM_NEWADDR, addressHeader(AF_INET6, ++index))
        .addNumber(IFA_ADDRESS, Address6{first, second});
  }
  EXPECT_THAT(parseAddressedLinks(builder.bytes()), ElementsAre(3U, 4U, 5U, 6U, 7U, 8U));
}

TEST(RtnetlinkAddresses, PrefersTheLocalEndOfAnIPv6LinkBetweenPeers) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWADDR, addressHeader(AF_INET6, 4))
                         .addNumber(IFA_ADDRESS, Address6{0x20, 0x01})
                         .addNumber(IFA_LOCAL, Address6{0xFE, 0x80})
                         .bytes();
  EXPECT_THAT(parseAddressedLinks(bytes), IsEmpty());
}

TEST(RtnetlinkAddresses, PassesOverOtherFamiliesAndMessagesWithoutAnAddress) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWADDR, addressHeader(AF_PACKET, 4))
                         .addNumber(IFA_ADDRESS, address4)
                         .begin(RTM_NEWADDR, addressHeader(AF_INET, 4))
                         .begin(RTM_NEWADDR, addressHeader(AF_INET6, 4))
                         .begin(RTM_DELADDR, addressHeader(AF_INET, 4))
                         .addNumber(IFA_ADDRESS, address4)
                         .begin(RTM_NEWADDR, std::uint32_t{4})
                         .bytes();
  EXPECT_THAT(parseAddressedLinks(bytes), IsEmpty());
}

// Routes.

TEST(RtnetlinkRoutes, TakesDefaultRoutesWithTheirMetrics) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWROUTE, routeHeader())
                         .addNumber(RTA_OIF, 4)
                         .addNumber(RTA_PRIORITY, 600)
                         .begin(RTM_NEWROUTE, routeHeader())
                         .addNumber(RTA_OIF, 3)
                         .bytes();
  EXPECT_THAT(parseDefaultRoutes(bytes), ElementsAre(DefaultRoute{4, 600}, DefaultRoute{3, 0}));
}

TEST(RtnetlinkRoutes, KnowsThoseOfIPv6) {
  rtmsg header = routeHeader();
  header.rtm_family = AF_INET6;
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWROUTE, header)
                         .addNumber(RTA_OIF, 4)
                         .addNumber(RTA_PRIORITY, 1024)
                         .bytes();
  EXPECT_THAT(parseDefaultRoutes(bytes), ElementsAre(DefaultRoute{4, 1024, true}));
}

TEST(RtnetlinkRoutes, PassesOverRoutesThatAreNotDefaultUnicastAndOfTheMainTable) {
  NetlinkBuilder builder;
  const auto add = [&](auto change) {
    rtmsg header = routeHeader();
    change(header);
    builder.begin(RTM_NEWROUTE, header).addNumber(RTA_OIF, 4);
  };
  add([](rtmsg& header) { header.rtm_dst_len = 1; });
  add([](rtmsg& header) { header.rtm_type = RTN_BLACKHOLE; });
  add([](rtmsg& header) { header.rtm_type = RTN_LOCAL; });
  add([](rtmsg& header) { header.rtm_family = AF_MPLS; });
  add([](rtmsg& header) { header.rtm_table = RT_TABLE_LOCAL; });
  add([](rtmsg& header) { header.rtm_flags = RTM_F_CLONED; });
  add([](rtmsg& header) { header.rtm_flags = RTNH_F_DEAD; });
  builder.begin(RTM_DELROUTE, routeHeader()).addNumber(RTA_OIF, 4);
  builder.begin(RTM_NEWROUTE, routeHeader());
  builder.begin(RTM_NEWROUTE, std::uint32_t{0});
  EXPECT_THAT(parseDefaultRoutes(builder.bytes()), IsEmpty());
}

TEST(RtnetlinkRoutes, BelievesTheTableInTheAttributeRatherThanInTheHeader) {
  rtmsg header = routeHeader();
  header.rtm_table = RT_TABLE_COMPAT;
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWROUTE, header)
                         .addNumber(RTA_OIF, 4)
                         .addNumber(RTA_TABLE, std::uint32_t{1000})
                         .begin(RTM_NEWROUTE, header)
                         .addNumber(RTA_OIF, 5)
                         .addNumber(RTA_TABLE, std::uint32_t{RT_TABLE_MAIN})
                         .bytes();
  EXPECT_THAT(parseDefaultRoutes(bytes), ElementsAre(DefaultRoute{5, 0}));
}

rtnexthop hop(int index, unsigned char flags = 0) {
  rtnexthop result{};
  result.rtnh_len = sizeof(rtnexthop);
  result.rtnh_flags = flags;
  result.rtnh_ifindex = index;
  return result;
}

TEST(RtnetlinkRoutes, TakesEveryLivingHopOfAMultipathRoute) {
  const std::array hops{hop(4, RTNH_F_DEAD), hop(5), hop(6, RTNH_F_LINKDOWN)};
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWROUTE, routeHeader())
                         .add(RTA_MULTIPATH, std::as_bytes(std::span(hops)))
                         .addNumber(RTA_PRIORITY, 20)
                         .bytes();
  EXPECT_THAT(parseDefaultRoutes(bytes), ElementsAre(DefaultRoute{5, 20}, DefaultRoute{6, 20}));
}

TEST(RtnetlinkRoutes, StopsAtAHopWhoseLengthIsNone) {
  for (const int length : {0, 7, 17, 0xFFFF}) {
    std::array hops{hop(4), hop(5)};
    hops[1].rtnh_len = static_cast<unsigned short>(length);
    const auto bytes = NetlinkBuilder()
                           .begin(RTM_NEWROUTE, routeHeader())
                           .add(RTA_MULTIPATH, std::as_bytes(std::span(hops)))
                           .bytes();
    EXPECT_THAT(parseDefaultRoutes(bytes), ElementsAre(DefaultRoute{4, 0})) << length;
  }
}

// Counters.

if_stats_msg statsHeader(std::uint32_t index) {
  if_stats_msg header{};
  header.ifindex = index;
  return header;
}

std::optional<NetworkCounters> counters(const std::vector<std::byte>& bytes) {
  return parseLinkCounters(*MessageReader(bytes).next(), 4);
}

TEST(RtnetlinkCounters, TakesReceivedAndSentBytes) {
  rtnl_link_stats64 stats{};
  stats.rx_packets = 1;
  stats.tx_packets = 2;
  stats.rx_bytes = 0x1'2345'6789ULL;
  stats.tx_bytes = 0xFFFF'FFFF'FFFFULL;
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWSTATS, statsHeader(4))
                         .addNumber(IFLA_STATS_LINK_64, stats)
                         .bytes();
  EXPECT_EQ(counters(bytes),
            (NetworkCounters{.received = 0x1'2345'6789ULL, .sent = 0xFFFF'FFFF'FFFFULL}));
}

TEST(RtnetlinkCounters, TakesThemFromTheShorterStructureOfAnOlderKernel) {
  const std::array<std::uint64_t, 4> stats{1, 2, 3, 4};
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWSTATS, statsHeader(4))
                         .addNumber(IFLA_STATS_LINK_64, stats)
                         .bytes();
  EXPECT_EQ(counters(bytes), (NetworkCounters{.received = 3, .sent = 4}));
}

TEST(RtnetlinkCounters, GivesNothingForAnotherLinkAnotherMessageOrTooFewBytes) {
  const std::array<std::uint64_t, 4> stats{1, 2, 3, 4};
  const std::array<std::uint64_t, 3> few{1, 2, 3};
  EXPECT_EQ(counters(NetlinkBuilder()
                         .begin(RTM_NEWSTATS, statsHeader(5))
                         .addNumber(IFLA_STATS_LINK_64, stats)
                         .bytes()),
            std::nullopt);
  EXPECT_EQ(counters(NetlinkBuilder()
                         .begin(RTM_NEWLINK, statsHeader(4))
                         .addNumber(IFLA_STATS_LINK_64, stats)
                         .bytes()),
            std::nullopt);
  EXPECT_EQ(counters(NetlinkBuilder()
                         .begin(RTM_NEWSTATS, statsHeader(4))
                         .addNumber(IFLA_STATS_LINK_64, few)
                         .bytes()),
            std::nullopt);
  EXPECT_EQ(counters(NetlinkBuilder().begin(RTM_NEWSTATS, statsHeader(4)).bytes()), std::nullopt);
  EXPECT_EQ(counters(NetlinkBuilder().begin(RTM_NEWSTATS, std::uint32_t{4}).bytes()), std::nullopt);
}

// Notifications.

TEST(RtnetlinkChanges, ALinkPutsLinksAndRoutesOutOfDate) {
  for (const std::uint16_t type : {RTM_NEWLINK, RTM_DELLINK}) {
    EXPECT_EQ(parseChanges(NetlinkBuilder().begin(type, linkHeader(4)).bytes()),
              (Changes{.links = true, .addresses = false, .routes = true}));
  }
}

TEST(RtnetlinkChanges, APortOfABridgePutsNothingOutOfDate) {
  ifinfomsg port = linkHeader(4);
  port.ifi_family = AF_BRIDGE;
  EXPECT_EQ(parseChanges(NetlinkBuilder().begin(RTM_NEWLINK, port).bytes()), Changes{});
}

TEST(RtnetlinkChanges, AnAddressPutsAddressesOutOfDateAndAnIPv4OneRoutesToo) {
  for (const std::uint16_t type : {RTM_NEWADDR, RTM_DELADDR}) {
    EXPECT_EQ(parseChanges(NetlinkBuilder().begin(type, addressHeader(AF_INET, 4)).bytes()),
              (Changes{.links = false, .addresses = true, .routes = true}));
    EXPECT_EQ(parseChanges(NetlinkBuilder().begin(type, addressHeader(AF_INET6, 4)).bytes()),
              (Changes{.links = false, .addresses = true, .routes = false}));
  }
}

TEST(RtnetlinkChanges, OnlyADefaultRoutePutsRoutesOutOfDate) {
  for (const std::uint16_t type : {RTM_NEWROUTE, RTM_DELROUTE}) {
    rtmsg route = routeHeader();
    EXPECT_EQ(parseChanges(NetlinkBuilder().begin(type, route).bytes()),
              (Changes{.links = false, .addresses = false, .routes = true}));
    route.rtm_dst_len = 24;
    EXPECT_EQ(parseChanges(NetlinkBuilder().begin(type, route).bytes()), Changes{});
  }
}

TEST(RtnetlinkChanges, TheBeginningOfALongNotificationIsEnough) {
  const auto bytes = NetlinkBuilder()
                         .begin(RTM_NEWADDR, addressHeader(AF_INET6, 4))
                         .addText(IFA_LABEL, std::string(200, 'x'))
                         .bytes();
  EXPECT_EQ(parseChanges(Bytes(bytes).first(64)),
            (Changes{.links = false, .addresses = true, .routes = false}));
}

TEST(RtnetlinkChanges, WhatCannotBeToldPutsEverythingOutOfDate) {
  EXPECT_EQ(parseChanges({}), Changes::everything());
  for (const std::uint16_t type : {RTM_NEWLINK, RTM_NEWADDR, RTM_NEWROUTE}) {
    const auto bytes = NetlinkBuilder().begin(type, std::uint32_t{0}).bytes();
    EXPECT_EQ(parseChanges(bytes), Changes::everything());
    EXPECT_EQ(parseChanges(Bytes(bytes).first(10)), Changes::everything());
  }
  EXPECT_EQ(parseChanges(NetlinkBuilder().begin(NLMSG_OVERRUN, std::uint32_t{0}).bytes()),
            Changes::everything());
}

TEST(RtnetlinkChanges, OtherMessagesPutNothingOutOfDate) {
  EXPECT_EQ(parseChanges(NetlinkBuilder().begin(RTM_NEWNEIGH, linkHeader(4)).bytes()), Changes{});
}

}  // namespace
}  // namespace vantora
