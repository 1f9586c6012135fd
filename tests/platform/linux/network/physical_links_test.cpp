// SPDX-License-Identifier: MIT
#include "platform/linux/network/physical_links.hpp"

#include <gtest/gtest.h>
#include <linux/if_arp.h>

#include <string>

namespace vantora {
namespace {

struct Case {
  std::uint16_t type;
  const char* kind;
  bool hasHardware;
};

// The positions that are physical, as digits.
std::string physical(std::initializer_list<Case> cases) {
  std::vector<KnownLink> links;
  for (const Case& one : cases) {
    links.push_back({{static_cast<std::uint32_t>(links.size()) + 1, one.type, 0, "x", one.kind},
                     one.hasHardware});
  }
  std::string positions;
  const std::vector<bool> result = physicalLinks(links);
  for (std::size_t position = 0; position < result.size(); ++position) {
    positions += result[position] ? std::to_string(position) : "";
  }
  return positions;
}

TEST(PhysicalLinks, AreThoseWithHardwareThatCarryPackets) {
  EXPECT_EQ(physical({{ARPHRD_LOOPBACK, "", false},
                      {ARPHRD_ETHER, "", true},
                      {ARPHRD_RAWIP, "", true},
                      {ARPHRD_ETHER, "wwan", true},
                      {ARPHRD_IEEE80211_RADIOTAP, "", true},
                      {ARPHRD_CAN, "can", true},
                      {ARPHRD_NONE, "", true}}),
            "1236");
}

TEST(PhysicalLinks, AreNeverVirtualOnesBesideHardware) {
  EXPECT_EQ(physical({{ARPHRD_ETHER, "", true},
                      {ARPHRD_ETHER, "", false},
                      {ARPHRD_ETHER, "veth", false},
                      {ARPHRD_ETHER, "bridge", false},
                      {ARPHRD_ETHER, "bond", false},
                      {ARPHRD_ETHER, "macvlan", false},
                      {ARPHRD_NONE, "wireguard", false},
                      {ARPHRD_NONE, "tun", false}}),
            "0");
}

TEST(PhysicalLinks, AreTheUplinksOfAContainerWithoutHardware) {
  EXPECT_EQ(physical({{ARPHRD_LOOPBACK, "", false},
                      {ARPHRD_ETHER, "veth", false},
                      {ARPHRD_ETHER, "macvlan", false},
                      {ARPHRD_ETHER, "ipvlan", false},
                      {ARPHRD_ETHER, "netkit", false},
                      {ARPHRD_ETHER, "", false}}),
            "12345");
}

TEST(PhysicalLinks, AreNeverTunnelsNorBridgesInAContainerEither) {
  EXPECT_EQ(physical({{ARPHRD_LOOPBACK, "", false},
                      {ARPHRD_NONE, "tun", false},
                      {ARPHRD_ETHER, "tun", false},
                      {ARPHRD_NONE, "wireguard", false},
                      {ARPHRD_ETHER, "vxlan", false},
                      {ARPHRD_ETHER, "bridge", false},
                      {ARPHRD_ETHER, "bond", false},
                      {ARPHRD_ETHER, "dummy", false},
                      {ARPHRD_ETHER, "ifb", false},
                      {ARPHRD_SIT, "sit", false}}),
            "");
}

TEST(PhysicalLinks, DoNotComeFromAMonitorsHardwareAlone) {
  EXPECT_EQ(physical({{ARPHRD_IEEE80211_RADIOTAP, "", true}, {ARPHRD_ETHER, "veth", false}}), "1");
}

TEST(PhysicalLinks, AreNoneWithoutLinks) {
  EXPECT_EQ(physical({}), "");
}

}  // namespace
}  // namespace vantora
