// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <vector>

#include "platform/linux/network/rtnetlink_message.hpp"

namespace vantora {

/// A link and whether it belongs to a hardware device.
struct KnownLink {
  Rtnetlink::Link link;
  bool hasHardware = false;
};

/// Which links carry the machine's own traffic, at the same positions.
///
/// A link is physical when it has a hardware device and is of a type that carries
/// packets: Ethernet, which cabled and Wi-Fi adapters, USB tethering and most modems are,
/// or raw IP, which the other modems are; their drivers name it RAWIP (rmnet) or NONE
/// (qmi_wwan). A Wi-Fi monitor has the adapter's device too, but its own type, and counts
/// everybody's packets.
///
/// Containers and some virtual machines have no hardware link at all; their uplink is a
/// pair's end (veth, netkit), a share of the host's adapter (macvlan, ipvlan), or an
/// Ethernet link of no kind. Only there these count as physical. Tunnels, bridges, bonds
/// and dummies never do.
[[nodiscard]] std::vector<bool> physicalLinks(std::span<const KnownLink> links);

}  // namespace vantora
