// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_message.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <span>

#include "platform/linux/network/netlink_builder.hpp"
#include "platform/linux/network/rtnetlink_headers.hpp"

namespace vantora {
namespace {

using namespace Rtnetlink;
using test::address4;
using test::addressHeader;
using test::NetlinkBuilder;
using test::routeHeader;
using testing::ElementsAre;
using testing::IsEmpty;
using Address6 = std::array<std::uint8_t, 16>;

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

}  // namespace
}  // namespace vantora
