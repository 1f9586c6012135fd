// SPDX-License-Identifier: MIT
//
// The network interfaces of a Linux machine. What changes rarely (links, addresses,
// routes) is kept, and read anew only when the kernel announces a change; a tick
// costs one question for such news and the counters of one link.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/network/link_events.hpp"
#include "platform/linux/network/link_folder.hpp"
#include "platform/linux/network/physical_links.hpp"
#include "platform/linux/network/rtnetlink_client.hpp"
#include "platform/linux/network/stacked_links.hpp"
#include "sampling/network_source.hpp"

namespace vantora {

class RtnetlinkSource final : public NetworkSource {
 public:
  /// `sysfsRoot` is the folder that holds "class/net". Where it does not show a link,
  /// the counters come over rtnetlink instead.
  explicit RtnetlinkSource(std::string sysfsRoot = "/sys") : sysfsRoot_(std::move(sysfsRoot)) {}

  [[nodiscard]] Result<std::span<const NetworkInterface>> read() override;
  [[nodiscard]] Result<NetworkCounters> counters(std::size_t position) override;
  [[nodiscard]] std::optional<std::string> primaryInterface() override { return primary_; }
  [[nodiscard]] const InterfaceNames& addressedInterfaces() override { return addressed_; }
  [[nodiscard]] std::string_view mechanism() const override;

 private:
  std::optional<Fault> refresh();
  bool readRoutes(std::uint8_t family);
  void takeLinks(std::vector<Rtnetlink::Link> links);
  void nameAddressedInterfaces();
  void findPrimaryInterface();

  const std::string sysfsRoot_;
  LinkEvents events_;
  Rtnetlink::Client client_;
  Rtnetlink::Changes outdated_ = Rtnetlink::Changes::everything();

  // As the kernel dumped them.
  std::vector<KnownLink> links_;
  std::vector<std::uint32_t> addressedIndexes_;
  std::vector<Rtnetlink::DefaultRoute> routes_;

  // What is made of them. interfaces_ has the order of links_.
  std::vector<NetworkInterface> interfaces_;
  InterfaceNames addressed_;
  std::optional<std::string> primary_;

  std::optional<std::uint32_t> statisticsIndex_;  // whose statistics_ were looked for
  LinkStatistics statistics_;
};

}  // namespace vantora
