// SPDX-License-Identifier: MIT
//
// What sysfs shows of one network device: /sys/class/net/NAME.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/network/rtnetlink_message.hpp"
#include "runtime/unique_fd.hpp"
#include "sampling/network_source.hpp"

namespace vantora {

/// Opens the folder of the device `link`. None when there is no such device, or when it
/// is another one: sysfs shows the network namespace that it was mounted in, which need
/// not be this process's, so the index and the hardware address must agree.
[[nodiscard]] UniqueFd openLinkFolder(const std::string& sysfsRoot, const Rtnetlink::Link& link);

/// Whether the link belongs to a hardware device.
[[nodiscard]] bool hasHardware(const UniqueFd& linkFolder);

/// The two byte counters of a link, kept open: a reading costs two system calls and
/// takes no lock of the network's. The files stay those of the same device when it is
/// renamed, and fail when it goes. Used on one thread.
class LinkStatistics {
 public:
  LinkStatistics() = default;
  /// Of the link whose folder this is; isOpen() answers whether both are there.
  explicit LinkStatistics(const UniqueFd& linkFolder);

  [[nodiscard]] bool isOpen() const { return received_ && sent_; }

  /// Nothing when either cannot be read, whatever the reason.
  [[nodiscard]] std::optional<NetworkCounters> read() const;

 private:
  UniqueFd received_;
  UniqueFd sent_;
};

}  // namespace vantora
