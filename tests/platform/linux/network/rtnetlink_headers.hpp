// SPDX-License-Identifier: MIT
//
// What the kernel's messages begin with.
#pragma once

#include <linux/if_addr.h>
#include <linux/if_arp.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <cstdint>

namespace vantora::test {

inline ifinfomsg linkHeader(int index, unsigned flags = 0x1003, std::uint16_t type = ARPHRD_ETHER) {
  ifinfomsg header{};
  header.ifi_index = index;
  header.ifi_flags = flags;
  header.ifi_type = type;
  return header;
}

inline ifaddrmsg addressHeader(std::uint8_t family, std::uint32_t index) {
  ifaddrmsg header{};
  header.ifa_family = family;
  header.ifa_index = index;
  return header;
}

inline rtmsg routeHeader() {
  rtmsg header{};
  header.rtm_family = AF_INET;
  header.rtm_table = RT_TABLE_MAIN;
  header.rtm_type = RTN_UNICAST;
  return header;
}

inline constexpr std::array<std::uint8_t, 4> address4{192, 0, 2, 2};

}  // namespace vantora::test
