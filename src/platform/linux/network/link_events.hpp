// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "platform/linux/network/rtnetlink_message.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora {

/// The kernel's notifications of changed links, addresses and IPv4 routes, kept in a
/// socket until they are asked for: they wake no thread. Used on one thread.
class LinkEvents {
 public:
  /// What has changed since the last call; everything on the first one, and when
  /// notifications were lost. One system call when nothing has changed. Where the system
  /// gives no notifications, everything counts as changed every time.
  [[nodiscard]] Rtnetlink::Changes take();

 private:
  void open();

  UniqueFd socket_;
};

}  // namespace vantora
