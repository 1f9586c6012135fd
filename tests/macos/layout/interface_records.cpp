// SPDX-License-Identifier: MIT
//
// The offsets and constants by which the core walks the interface table.
#include <sys/types.h>
// The order matters to the system's headers.
#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_types.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/sysctl.h>

#include <cstddef>

#include "sampling/apple/interface_list.hpp"

static_assert(sizeof(if_msghdr2) == 160);
static_assert(offsetof(if_msghdr2, ifm_msglen) == 0);
static_assert(sizeof(if_msghdr2::ifm_msglen) == 2);
static_assert(offsetof(if_msghdr2, ifm_type) == 3);
static_assert(sizeof(if_msghdr2::ifm_type) == 1);
static_assert(offsetof(if_msghdr2, ifm_flags) == 8);
static_assert(sizeof(if_msghdr2::ifm_flags) == 4);
static_assert(offsetof(if_msghdr2, ifm_index) == 12);
static_assert(sizeof(if_msghdr2::ifm_index) == 2);
static_assert(offsetof(if_msghdr2, ifm_data) == 32);
static_assert(offsetof(if_msghdr2, ifm_data.ifi_type) == 32);
static_assert(sizeof(if_data64::ifi_type) == 1);
static_assert(offsetof(if_msghdr2, ifm_data.ifi_ibytes) == 96);
static_assert(offsetof(if_msghdr2, ifm_data.ifi_obytes) == 104);
static_assert(sizeof(if_data64::ifi_ibytes) == 8);
static_assert(sizeof(if_data64::ifi_obytes) == 8);

static_assert(vantora::InterfaceListReader::sysctlName ==
              std::array<int, 6>{CTL_NET, PF_ROUTE, 0, 0, NET_RT_IFLIST2, 0});
static_assert(RTM_IFINFO2 == 18);
static_assert(IFF_UP == 1);
static_assert(IFT_ETHER == 6);
static_assert(IF_NAMESIZE == 16);

static_assert(AF_INET == 2 && AF_INET6 == 30);
static_assert(offsetof(sockaddr, sa_family) == 1);
static_assert(offsetof(sockaddr_in6, sin6_addr) == 8);
