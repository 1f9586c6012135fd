// SPDX-License-Identifier: MIT
#include "platform/linux/network/stacked_links.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vantora {
namespace {

struct Stack {
  std::vector<KnownLink> links;

  Rtnetlink::Link& add(std::uint32_t index, const std::string& kind = "") {
    links.push_back({});
    links.back().link.index = index;
    links.back().link.kind = kind;
    return links.back().link;
  }
  // The indexes of the links under that one, as digits.
  [[nodiscard]] std::string under(std::uint32_t index) const {
    std::string indexes;
    for (const std::size_t position : linksUnder(links, index)) {
      indexes += std::to_string(links[position].link.index);
    }
    return indexes;
  }
};

TEST(StackedLinks, AreNoneUnderHardwareAndNothingForALinkThatIsGone) {
  Stack stack;
  stack.add(1);
  stack.add(2);
  EXPECT_EQ(stack.under(2), "2");
  EXPECT_EQ(stack.under(3), "");
}

TEST(StackedLinks, AreThePortsOfABridgeABondOrATeam) {
  for (const char* kind : {"bridge", "bond", "team"}) {
    Stack stack;
    stack.add(1);
    stack.add(2).upper = 4;
    stack.add(3).upper = 4;
    stack.add(4, kind);
    EXPECT_EQ(stack.under(4), "423") << kind;
    EXPECT_EQ(stack.under(2), "2") << kind;
  }
}

TEST(StackedLinks, AreThePortInUseOfABondThatKeepsTheOthersInReserve) {
  Stack stack;
  stack.add(2).upper = 4;
  stack.add(3).upper = 4;
  stack.add(4, "bond").active = 3;
  EXPECT_EQ(stack.under(4), "43");
}

TEST(StackedLinks, AreTheParentsOfVlansAndTheLike) {
  for (const char* kind : {"vlan", "macvlan", "ipvlan", "macsec"}) {
    Stack stack;
    stack.add(2);
    stack.add(4, kind).lower = 2;
    EXPECT_EQ(stack.under(4), "42") << kind;
  }
}

TEST(StackedLinks, AreNotThePeersOfPairsNorTheRoutesOfTunnelsNorTheLinksOfARoutingTable) {
  for (const char* kind : {"veth", "gre", "vxlan", "wireguard", ""}) {
    Stack stack;
    stack.add(2);
    stack.add(4, kind).lower = 2;
    EXPECT_EQ(stack.under(4), "4") << kind;
  }
  Stack stack;
  stack.add(2).upper = 4;
  stack.add(4, "vrf");
  EXPECT_EQ(stack.under(4), "4");
}

TEST(StackedLinks, AreFoundThroughSeveralLayers) {
  Stack stack;
  stack.add(2).upper = 4;
  stack.add(3).upper = 4;
  stack.add(4, "bond");
  Rtnetlink::Link& vlan = stack.add(5, "vlan");
  vlan.lower = 4;
  vlan.upper = 6;
  stack.add(6, "bridge");
  EXPECT_EQ(stack.under(6), "65423");
}

TEST(StackedLinks, EndInACircle) {
  Stack stack;
  stack.add(2, "vlan").lower = 3;
  stack.add(3, "vlan").lower = 2;
  EXPECT_EQ(stack.under(2), "23");
}

}  // namespace
}  // namespace vantora
