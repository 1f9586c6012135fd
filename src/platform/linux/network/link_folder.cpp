// SPDX-License-Identifier: MIT
#include "platform/linux/network/link_folder.hpp"

#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

std::optional<std::uint64_t> readCounter(const UniqueFd& file) {
  const std::optional<std::int64_t> number = Sysfs::readNumber(file.get()).ifRead();
  if (!number || *number < 0) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(*number);
}

}  // namespace

UniqueFd openLinkFolder(const std::string& sysfsRoot, const Rtnetlink::Link& link) {
  const std::string& name = link.name;
  // No device is called so (dev_valid_name in the kernel's net/core/dev.c).
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) {
    return {};
  }
  UniqueFd folder = Sysfs::openDirectory(sysfsRoot + "/class/net/" + name);
  if (!folder || Sysfs::readNumber(folder.get(), "ifindex").ifRead() != link.index) {
    return {};
  }
  Sysfs::Buffer buffer;  // NOLINT: the read fills it
  const Sysfs::Text address = Sysfs::readText(folder.get(), "address", buffer);
  if (address.error != 0 || address.text != link.address) {
    return {};
  }
  return folder;
}

bool hasHardware(const UniqueFd& linkFolder) {
  return linkFolder && ::faccessat(linkFolder.get(), "device", F_OK, 0) == 0;
}

LinkStatistics::LinkStatistics(const UniqueFd& linkFolder) {
  if (linkFolder) {
    received_ = Sysfs::open(linkFolder.get(), "statistics/rx_bytes");
    sent_ = Sysfs::open(linkFolder.get(), "statistics/tx_bytes");
  }
}

std::optional<NetworkCounters> LinkStatistics::read() const {
  const std::optional<std::uint64_t> received = readCounter(received_);
  const std::optional<std::uint64_t> sent = readCounter(sent_);
  if (!received || !sent) {
    return std::nullopt;
  }
  return NetworkCounters{.received = *received, .sent = *sent};
}

}  // namespace vantora
