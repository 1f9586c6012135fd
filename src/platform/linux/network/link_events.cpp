// SPDX-License-Identifier: MIT
#include "platform/linux/network/link_events.hpp"

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <utility>

namespace vantora {

Rtnetlink::Changes LinkEvents::take() {
  using Rtnetlink::Changes;
  if (!socket_) {
    open();
    return Changes::everything();
  }
  // Headers say enough; the rest of a notification is cut off unread.
  std::array<std::byte, 64> beginning;
  // More than the socket's buffer holds; what arrives meanwhile is read the next time.
  constexpr int maxAtOnce = 1000;
  Changes changes;
  for (int count = 0; count < maxAtOnce; ++count) {
    const ssize_t size = ::recv(socket_.get(), beginning.data(), beginning.size(), MSG_DONTWAIT);
    if (size >= 0) {
      changes |= Rtnetlink::parseChanges(
          std::span(beginning).first(std::min(static_cast<std::size_t>(size), beginning.size())));
    } else if (errno == EAGAIN) {
      break;
    } else if (errno == ENOBUFS) {
      changes = Changes::everything();
    } else if (errno != EINTR) {
      socket_.reset();
      return Changes::everything();
    }
  }
  return changes;
}

void LinkEvents::open() {
  UniqueFd opened(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  sockaddr_nl groups{};
  groups.nl_family = AF_NETLINK;
  groups.nl_groups =
      RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
  if (opened &&
      ::bind(opened.get(), reinterpret_cast<const sockaddr*>(&groups), sizeof groups) == 0) {
    socket_ = std::move(opened);
  }
}

}  // namespace vantora
