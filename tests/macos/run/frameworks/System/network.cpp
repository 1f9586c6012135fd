// SPDX-License-Identifier: MIT
//
// The interface table of sysctl(3), the names of interface numbers and the addresses.
// Played: the first call answers with the bytes that are needed, the second fills them; each
// interface has a record of 160 bytes (if_msghdr2, xnu's bsd/net/if.h) and, among them, lie
// records of other types, for addresses; counters count with time.
#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include "frameworks/System/clock.hpp"
#include "machine/machine.hpp"
#include "objc/fault.hpp"

namespace {

using standin::Interface;
using standin::Machine;

constexpr std::size_t recordSize = 160;
constexpr std::size_t addressRecordSize = 20;

template <typename Number>
void put(std::vector<std::uint8_t>& table, std::size_t at, Number value) {
  std::memcpy(table.data() + at, &value, sizeof value);
}

std::uint64_t count(std::uint64_t base, double perSecond) {
  const double seconds = static_cast<double>(standin::uptimeToldLast()) / 1e9;
  return base + static_cast<std::uint64_t>(perSecond * seconds);
}

std::vector<std::uint8_t> tableOf(const Machine& machine) {
  std::vector<std::uint8_t> table;
  for (const Interface& each : machine.interfaces) {
    const std::size_t begin = table.size();
    table.resize(begin + recordSize + addressRecordSize);
    put<std::uint16_t>(table, begin, recordSize);
    table[begin + 2] = 5;     // RTM_VERSION
    table[begin + 3] = 0x12;  // RTM_IFINFO2
    put<std::uint32_t>(table, begin + 8, each.flags);
    put<std::uint16_t>(table, begin + 12, each.index);
    table[begin + 32] = each.type;
    put<std::uint64_t>(table, begin + 96, count(each.received, each.receivedPerSecond));
    put<std::uint64_t>(table, begin + 104, count(each.sent, each.sentPerSecond));
    put<std::uint16_t>(table, begin + recordSize, addressRecordSize);
    table[begin + recordSize + 2] = 5;
    table[begin + recordSize + 3] = 0xc;  // RTM_NEWADDR
  }
  return table;
}

// One allocation an entry, as a list that freeifaddrs takes apart.
struct Address {
  ifaddrs entry;
  sockaddr_storage address;
  char name[IF_NAMESIZE];
};

void append(ifaddrs*** end, const Interface& interface, int family) {
  auto* made = new Address{};
  std::snprintf(made->name, sizeof made->name, "%s", interface.name.c_str());
  made->entry.ifa_name = made->name;
  made->entry.ifa_flags = interface.flags;
  if (family != AF_UNSPEC) {
    made->address.ss_family = static_cast<sa_family_t>(family);
    made->entry.ifa_addr = reinterpret_cast<sockaddr*>(&made->address);
  }
  if (family == AF_INET6) {
    auto* ip6 = reinterpret_cast<sockaddr_in6*>(&made->address);
    inet_pton(AF_INET6, "fe80::1", &ip6->sin6_addr);
  }
  **end = &made->entry;
  *end = &made->entry.ifa_next;
}

}  // namespace

extern "C" {

int sysctl(int* name, u_int nameCount, void* old, size_t* oldSize, void* replacement, size_t) {
  constexpr int wanted[] = {4, 17, 0, 0, 6, 0};  // CTL_NET, PF_ROUTE, ..., NET_RT_IFLIST2
  if (nameCount != std::size(wanted) || !std::equal(name, name + nameCount, wanted) ||
      replacement != nullptr) {
    standin::fault("sysctl is called for something else than the interface table");
  }
  return standin::withMachine([&](Machine& machine) {
    if (machine.isInterfaceTableRefused) {
      errno = EPERM;
      return -1;
    }
    std::vector<std::uint8_t> table = tableOf(machine);
    if (old == nullptr) {
      *oldSize = table.size() + static_cast<std::size_t>(machine.interfaceTablePadding);
      return 0;
    }
    ++machine.calls.interfaceTables;
    if (machine.truncatedTo >= 0) {
      table.resize(std::min(table.size(), static_cast<std::size_t>(machine.truncatedTo)));
    }
    if (table.size() > *oldSize) {
      errno = ENOMEM;
      return -1;
    }
    std::copy(table.begin(), table.end(), static_cast<std::uint8_t*>(old));
    *oldSize = table.size();
    return 0;
  });
}

char* if_indextoname(unsigned index, char* name) noexcept {
  return standin::withMachine([&](Machine& machine) -> char* {
    ++machine.calls.interfaceNames;
    for (const Interface& each : machine.interfaces) {
      if (each.index == index) {
        std::snprintf(name, IF_NAMESIZE, "%s", each.name.c_str());
        return name;
      }
    }
    errno = ENXIO;
    return nullptr;
  });
}

int getifaddrs(ifaddrs** first) noexcept {
  *first = nullptr;
  return standin::withMachine([&](Machine& machine) {
    if (machine.isInterfaceTableRefused) {
      errno = EPERM;
      return -1;
    }
    ifaddrs** end = first;
    for (const Interface& each : machine.interfaces) {
      // The link's own entry; one of a kind without address comes from tunnels.
      append(&end, each, AF_UNSPEC);
      append(&end, each, AF_PACKET);
      if (each.hasIp4) {
        append(&end, each, AF_INET);
      }
      if (each.hasLinkLocalIp6) {
        append(&end, each, AF_INET6);
      }
    }
    return 0;
  });
}

void freeifaddrs(ifaddrs* first) noexcept {
  while (first != nullptr) {
    ifaddrs* next = first->ifa_next;
    delete reinterpret_cast<Address*>(first);
    first = next;
  }
}

}  // extern "C"
