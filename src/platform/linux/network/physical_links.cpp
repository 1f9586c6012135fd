// SPDX-License-Identifier: MIT
#include "platform/linux/network/physical_links.hpp"

#include <linux/if_arp.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vantora {
namespace {

bool isHardware(const KnownLink& known) {
  constexpr std::array<std::uint16_t, 3> types{ARPHRD_ETHER, ARPHRD_RAWIP, ARPHRD_NONE};
  return known.hasHardware && std::find(types.begin(), types.end(), known.link.type) != types.end();
}

bool isUplinkOfAContainer(const KnownLink& known) {
  constexpr std::array<std::string_view, 5> kinds{"", "ipvlan", "macvlan", "netkit", "veth"};
  return known.link.type == ARPHRD_ETHER &&
         std::find(kinds.begin(), kinds.end(), known.link.kind) != kinds.end();
}

}  // namespace

std::vector<bool> physicalLinks(std::span<const KnownLink> links) {
  const bool hasAny = std::any_of(links.begin(), links.end(), isHardware);
  std::vector<bool> physical;
  physical.reserve(links.size());
  for (const KnownLink& known : links) {
    physical.push_back(hasAny ? isHardware(known) : isUplinkOfAContainer(known));
  }
  return physical;
}

}  // namespace vantora
