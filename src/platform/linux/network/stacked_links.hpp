// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/linux/network/physical_links.hpp"

namespace vantora {

/// The positions of the links that carry what is sent through the link of that index: itself
/// first, then what it stands on, the nearest first. A bridge, a bond or a team stands on its
/// ports; an active-backup bond on the port in use alone. A VLAN, a macvlan, an ipvlan or a
/// MACsec link stands on its parent. Tunnels are left out: they stand on a route, not on a link.
/// Empty where there is no link of that index.
[[nodiscard]] std::vector<std::size_t> linksUnder(std::span<const KnownLink> links,
                                                  std::uint32_t index);

}  // namespace vantora
