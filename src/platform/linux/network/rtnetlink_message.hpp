// SPDX-License-Identifier: MIT
//
// What rtnetlink's messages say (rtnetlink(7), linux/rtnetlink.h, linux/if_link.h): bytes
// in, values out. Bytes that make no sense end the walk over them; nothing outside of a
// message or of an attribute is ever read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sampling/network_source.hpp"

namespace vantora::Rtnetlink {

using Bytes = std::span<const std::byte>;

struct Message {
  std::uint16_t type = 0;
  std::uint16_t flags = 0;
  std::uint32_t sequence = 0;
  Bytes payload;
};

/// The messages of a datagram, one after the other.
class MessageReader {
 public:
  explicit MessageReader(Bytes datagram) : rest_(datagram) {}

  /// The next whole message. Nothing at the end, and where the bytes are not one.
  [[nodiscard]] std::optional<Message> next();

  /// Whether every byte so far belonged to a whole message.
  [[nodiscard]] bool isIntact() const { return isIntact_; }

 private:
  Bytes rest_;
  bool isIntact_ = true;
};

/// The errno in an NLMSG_ERROR or NLMSG_DONE; 0 for an acknowledgement and for success.
[[nodiscard]] int parseError(const Message& message);

/// One network device, RTM_NEWLINK.
struct Link {
  std::uint32_t index = 0;
  std::uint16_t type = 0;    ///< ARPHRD_*
  std::uint32_t flags = 0;   ///< IFF_*
  std::string name;          ///< The kernel's bytes, which need not be UTF-8.
  std::string kind;          ///< IFLA_INFO_KIND ("bridge", "veth"); empty for hardware.
  std::string address = {};  ///< As sysfs writes it: "02:00:5e:10:00:01"; empty for none.

  // Indexes of other links in the same namespace; 0 for none.
  std::uint32_t upper = 0;   ///< The bridge, bond or team that this link is a port of.
  std::uint32_t lower = 0;   ///< What a VLAN or a macvlan stands on.
  std::uint32_t active = 0;  ///< The port that an active-backup bond uses.

  bool operator==(const Link&) const = default;
};

/// A next hop of a default route: unicast, main table.
struct DefaultRoute {
  std::uint32_t interface = 0;  ///< The index of the device it leaves by.
  std::uint32_t metric = 0;     ///< Lowest first; absent in the message counts as 0.
  bool isIPv6 = false;

  bool operator==(const DefaultRoute&) const = default;
};

/// What a notification makes out of date.
struct Changes {
  bool links = false;
  bool addresses = false;
  bool routes = false;

  static constexpr Changes everything() { return {true, true, true}; }
  [[nodiscard]] constexpr bool any() const { return links || addresses || routes; }
  constexpr Changes& operator|=(Changes other) {
    links |= other.links;
    addresses |= other.addresses;
    routes |= other.routes;
    return *this;
  }
  bool operator==(const Changes&) const = default;
};

/// The devices of a dump, in its order. Messages without a name are passed over.
[[nodiscard]] std::vector<Link> parseLinks(Bytes messages);

/// The indexes of the devices that have an IPv4 address, or an IPv6 address outside
/// fe80::/10; each once, ascending.
[[nodiscard]] std::vector<std::uint32_t> parseAddressedLinks(Bytes messages);

/// The living next hops of every default route of a dump, in its order.
[[nodiscard]] std::vector<DefaultRoute> parseDefaultRoutes(Bytes messages);

/// The 64-bit byte counters in an RTM_NEWSTATS message about `index`.
[[nodiscard]] std::optional<NetworkCounters> parseLinkCounters(const Message& message,
                                                               std::uint32_t index);

/// What a datagram of notifications, of which only the beginning may be there, puts out
/// of date. What cannot be determined counts as everything.
[[nodiscard]] Changes parseChanges(Bytes datagram);

}  // namespace vantora::Rtnetlink
