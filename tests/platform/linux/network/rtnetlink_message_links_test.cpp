// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_message.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/if_link.h>

#include <array>
#include <span>
#include <vector>

#include "platform/linux/network/netlink_builder.hpp"
#include "platform/linux/network/rtnetlink_headers.hpp"

namespace vantora {
namespace {

using namespace Rtnetlink;
using test::linkHeader;
using test::NetlinkBuilder;
using testing::ElementsAre;
using testing::IsEmpty;

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

}  // namespace
}  // namespace vantora
