// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_message.hpp"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace vantora::Rtnetlink {
namespace {

struct Attribute {
  std::uint16_t type = 0;
  Bytes payload;
};

// The structure at the front of the bytes; nothing when they are too few.
template <typename Structure>
std::optional<Structure> structureAt(Bytes bytes) {
  if (bytes.size() < sizeof(Structure)) {
    return std::nullopt;
  }
  Structure structure;
  std::memcpy(&structure, bytes.data(), sizeof structure);
  return structure;
}

// Messages and attributes begin at multiples of four bytes; the last one may go unpadded.
Bytes withoutFirst(Bytes bytes, std::size_t length) {
  constexpr std::size_t alignment = 4;
  const std::size_t padded = (length + alignment - 1) / alignment * alignment;
  return bytes.subspan(std::min(padded, bytes.size()));
}

// What follows a message's own header: a run of attributes.
template <typename Header>
Bytes attributesAfter(Bytes payload) {
  return withoutFirst(payload, sizeof(Header));
}

std::optional<Attribute> takeAttribute(Bytes& rest) {
  const auto header = structureAt<rtattr>(rest);
  if (!header || header->rta_len < sizeof(rtattr) || header->rta_len > rest.size()) {
    return std::nullopt;
  }
  const Attribute attribute{static_cast<std::uint16_t>(header->rta_type & NLA_TYPE_MASK),
                            rest.subspan(sizeof(rtattr), header->rta_len - sizeof(rtattr))};
  rest = withoutFirst(rest, header->rta_len);
  return attribute;
}

// The payload of the first attribute of the type.
std::optional<Bytes> findAttribute(Bytes attributes, std::uint16_t type) {
  while (const auto attribute = takeAttribute(attributes)) {
    if (attribute->type == type) {
      return attribute->payload;
    }
  }
  return std::nullopt;
}

std::optional<std::uint32_t> findNumber(Bytes attributes, std::uint16_t type) {
  const auto payload = findAttribute(attributes, type);
  return payload ? structureAt<std::uint32_t>(*payload) : std::nullopt;
}

// Texts end at a zero byte or with the attribute.
std::string text(Bytes payload) {
  const std::string_view all(reinterpret_cast<const char*>(payload.data()), payload.size());
  return std::string(all.substr(0, all.find('\0')));
}

std::string findText(Bytes attributes, std::uint16_t type) {
  const auto payload = findAttribute(attributes, type);
  return payload ? text(*payload) : std::string();
}

// As sysfs_format_mac in the kernel writes it.
std::string hardwareAddress(Bytes bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::byte byte : bytes) {
    const auto value = std::to_integer<unsigned>(byte);
    text.append(text.empty() ? "" : ":");
    text.push_back(digits[value / 16]);
    text.push_back(digits[value % 16]);
  }
  return text;
}

// The active port in a bond's own data; other kinds number their data differently.
std::uint32_t activePort(std::string_view kind, Bytes info) {
  const auto data = kind == "bond" ? findAttribute(info, IFLA_INFO_DATA) : std::nullopt;
  return data ? findNumber(*data, IFLA_BOND_ACTIVE_SLAVE).value_or(0) : 0;
}

bool isLinkLocal(Bytes address) {
  // fe80::/10, RFC 4291 section 2.5.6.
  return address.size() >= 2 && address[0] == std::byte{0xFE} &&
         (address[1] & std::byte{0xC0}) == std::byte{0x80};
}

// Whether getifaddrs would list an address of this message that makes its device
// addressed.
bool isRealAddress(const ifaddrmsg& header, Bytes attributes) {
  if (header.ifa_family == AF_INET) {
    return findAttribute(attributes, IFA_ADDRESS) || findAttribute(attributes, IFA_LOCAL);
  }
  if (header.ifa_family != AF_INET6) {
    return false;
  }
  // On a link between two peers IFA_ADDRESS is the other end's.
  auto address = findAttribute(attributes, IFA_LOCAL);
  if (!address) {
    address = findAttribute(attributes, IFA_ADDRESS);
  }
  return address && !isLinkLocal(*address);
}

bool isDefaultRoute(const rtmsg& header, Bytes attributes) {
  // Tables past 255 stand in an attribute alone.
  const std::uint32_t table = findNumber(attributes, RTA_TABLE).value_or(header.rtm_table);
  return (header.rtm_family == AF_INET || header.rtm_family == AF_INET6) &&
         header.rtm_dst_len == 0 && header.rtm_type == RTN_UNICAST && table == RT_TABLE_MAIN &&
         (header.rtm_flags & RTM_F_CLONED) == 0;
}

void appendNextHops(std::vector<DefaultRoute>& routes, Bytes hops, const DefaultRoute& route) {
  while (const auto hop = structureAt<rtnexthop>(hops)) {
    if (hop->rtnh_len < sizeof(rtnexthop) || hop->rtnh_len > hops.size()) {
      return;
    }
    if ((hop->rtnh_flags & RTNH_F_DEAD) == 0) {
      routes.push_back({static_cast<std::uint32_t>(hop->rtnh_ifindex), route.metric, route.isIPv6});
    }
    hops = withoutFirst(hops, hop->rtnh_len);
  }
}

}  // namespace

std::optional<Message> MessageReader::next() {
  if (rest_.empty()) {
    return std::nullopt;
  }
  const auto header = structureAt<nlmsghdr>(rest_);
  if (!header || header->nlmsg_len < sizeof(nlmsghdr) || header->nlmsg_len > rest_.size()) {
    isIntact_ = false;
    rest_ = {};
    return std::nullopt;
  }
  const Message message{header->nlmsg_type, header->nlmsg_flags, header->nlmsg_seq,
                        rest_.subspan(sizeof(nlmsghdr), header->nlmsg_len - sizeof(nlmsghdr))};
  rest_ = withoutFirst(rest_, header->nlmsg_len);
  return message;
}

int parseError(const Message& message) {
  const int error = structureAt<int>(message.payload).value_or(0);
  constexpr int maxErrno = 4095;
  return error < 0 && error >= -maxErrno ? -error : 0;
}

std::vector<Link> parseLinks(Bytes messages) {
  std::vector<Link> links;
  MessageReader reader(messages);
  while (const auto message = reader.next()) {
    const auto header = structureAt<ifinfomsg>(message->payload);
    if (message->type != RTM_NEWLINK || !header || header->ifi_index <= 0) {
      continue;
    }
    const Bytes attributes = attributesAfter<ifinfomsg>(message->payload);
    std::string name = findText(attributes, IFLA_IFNAME);
    if (name.empty()) {
      continue;
    }
    const Bytes info = findAttribute(attributes, IFLA_LINKINFO).value_or(Bytes());
    Link link{static_cast<std::uint32_t>(header->ifi_index), header->ifi_type, header->ifi_flags,
              std::move(name), findText(info, IFLA_INFO_KIND)};
    link.address = hardwareAddress(findAttribute(attributes, IFLA_ADDRESS).value_or(Bytes()));
    link.upper = findNumber(attributes, IFLA_MASTER).value_or(0);
    if (!findAttribute(attributes, IFLA_LINK_NETNSID)) {
      link.lower = findNumber(attributes, IFLA_LINK).value_or(0);
    }
    link.active = activePort(link.kind, info);
    links.push_back(std::move(link));
  }
  return links;
}

std::vector<std::uint32_t> parseAddressedLinks(Bytes messages) {
  std::vector<std::uint32_t> indexes;
  MessageReader reader(messages);
  while (const auto message = reader.next()) {
    const auto header = structureAt<ifaddrmsg>(message->payload);
    if (message->type == RTM_NEWADDR && header &&
        isRealAddress(*header, attributesAfter<ifaddrmsg>(message->payload))) {
      indexes.push_back(header->ifa_index);
    }
  }
  std::sort(indexes.begin(), indexes.end());
  indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
  return indexes;
}

std::vector<DefaultRoute> parseDefaultRoutes(Bytes messages) {
  std::vector<DefaultRoute> routes;
  MessageReader reader(messages);
  while (const auto message = reader.next()) {
    const auto header = structureAt<rtmsg>(message->payload);
    if (message->type != RTM_NEWROUTE || !header) {
      continue;
    }
    const Bytes attributes = attributesAfter<rtmsg>(message->payload);
    if (!isDefaultRoute(*header, attributes)) {
      continue;
    }
    DefaultRoute route{0, findNumber(attributes, RTA_PRIORITY).value_or(0),
                       header->rtm_family == AF_INET6};
    if (const auto interface = findNumber(attributes, RTA_OIF)) {
      if ((header->rtm_flags & RTNH_F_DEAD) == 0) {
        route.interface = *interface;
        routes.push_back(route);
      }
    } else if (const auto hops = findAttribute(attributes, RTA_MULTIPATH)) {
      appendNextHops(routes, *hops, route);
    }
  }
  return routes;
}

std::optional<NetworkCounters> parseLinkCounters(const Message& message, std::uint32_t index) {
  const auto header = structureAt<if_stats_msg>(message.payload);
  if (message.type != RTM_NEWSTATS || !header || header->ifindex != index) {
    return std::nullopt;
  }
  const auto payload =
      findAttribute(attributesAfter<if_stats_msg>(message.payload), IFLA_STATS_LINK_64);
  // The structure grows with the kernel; these two have always been there.
  struct Beginning {
    std::uint64_t packetsReceived, packetsSent, received, sent;
  };
  static_assert(offsetof(rtnl_link_stats64, rx_bytes) == offsetof(Beginning, received));
  static_assert(offsetof(rtnl_link_stats64, tx_bytes) == offsetof(Beginning, sent));
  const auto counters = payload ? structureAt<Beginning>(*payload) : std::nullopt;
  if (!counters) {
    return std::nullopt;
  }
  return NetworkCounters{.received = counters->received, .sent = counters->sent};
}

Changes parseChanges(Bytes datagram) {
  const auto header = structureAt<nlmsghdr>(datagram);
  if (!header || header->nlmsg_len < sizeof(nlmsghdr)) {
    return Changes::everything();
  }
  // The kernel sends a datagram a notification, so the first message is the only one.
  const Bytes payload = datagram.subspan(sizeof(nlmsghdr));
  switch (header->nlmsg_type) {
    case RTM_NEWLINK:
    case RTM_DELLINK: {
      const auto link = structureAt<ifinfomsg>(payload);
      if (!link) {
        return Changes::everything();
      }
      // Bridges tell of their ports in the same group. When a device goes, the kernel
      // drops its IPv4 routes without a word.
      const bool isDevice = link->ifi_family == AF_UNSPEC;
      return {.links = isDevice, .addresses = false, .routes = isDevice};
    }
    case RTM_NEWADDR:
    case RTM_DELADDR: {
      const auto address = structureAt<ifaddrmsg>(payload);
      if (!address) {
        return Changes::everything();
      }
      // An IPv4 address takes the routes along that prefer it as their source.
      return {.links = false, .addresses = true, .routes = address->ifa_family == AF_INET};
    }
    case RTM_NEWROUTE:
    case RTM_DELROUTE: {
      const auto route = structureAt<rtmsg>(payload);
      if (!route) {
        return Changes::everything();
      }
      return {.links = false, .addresses = false, .routes = route->rtm_dst_len == 0};
    }
    case NLMSG_ERROR:
    case NLMSG_OVERRUN:
      return Changes::everything();
    default:
      return {};
  }
}

}  // namespace vantora::Rtnetlink
