// SPDX-License-Identifier: MIT
#include "platform/linux/network/stacked_links.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace vantora {
namespace {

bool standsOnItsParent(const Rtnetlink::Link& link) {
  constexpr std::array<std::string_view, 4> kinds{"ipvlan", "macsec", "macvlan", "vlan"};
  return std::find(kinds.begin(), kinds.end(), link.kind) != kinds.end();
}

bool standsOnItsPorts(const Rtnetlink::Link& link) {
  constexpr std::array<std::string_view, 3> kinds{"bond", "bridge", "team"};
  return std::find(kinds.begin(), kinds.end(), link.kind) != kinds.end();
}

bool isDirectlyUnder(const Rtnetlink::Link& link, const Rtnetlink::Link& upper) {
  if (standsOnItsParent(upper)) {
    return link.index == upper.lower;
  }
  return standsOnItsPorts(upper) && link.upper == upper.index &&
         (upper.active == 0 || upper.active == link.index);
}

}  // namespace

std::vector<std::size_t> linksUnder(std::span<const KnownLink> links, std::uint32_t index) {
  std::vector<std::size_t> found;
  const auto add = [&](auto isWanted) {
    for (std::size_t position = 0; position < links.size(); ++position) {
      // Each once: messages of a changing table may describe a circle.
      if (isWanted(links[position].link) &&
          std::find(found.begin(), found.end(), position) == found.end()) {
        found.push_back(position);
      }
    }
  };
  add([&](const Rtnetlink::Link& link) { return link.index == index; });
  for (std::size_t next = 0; next < found.size(); ++next) {
    const Rtnetlink::Link& upper = links[found[next]].link;
    if (!standsOnItsParent(upper) && !standsOnItsPorts(upper)) {
      continue;  // A bridge may have a thousand ports, of which none stands on another link.
    }
    add([&](const Rtnetlink::Link& link) { return isDirectlyUnder(link, upper); });
  }
  return found;
}

}  // namespace vantora
