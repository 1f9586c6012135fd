// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_message.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/if_link.h>

#include <array>
#include <optional>
#include <vector>

#include "platform/linux/network/netlink_builder.hpp"
#include "platform/linux/network/rtnetlink_headers.hpp"

namespace vantora {
namespace {

using namespace Rtnetlink;
using test::addressHeader;
using test::linkHeader;
using test::NetlinkBuilder;
using test::routeHeader;

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
