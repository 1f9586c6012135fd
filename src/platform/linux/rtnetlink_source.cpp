// SPDX-License-Identifier: MIT
#include "platform/linux/rtnetlink_source.hpp"

#include <linux/if.h>

#include <algorithm>

#include "model/utf8.hpp"

namespace vantora {

Result<std::span<const NetworkInterface>> RtnetlinkSource::read() {
  outdated_ |= events_.take();
  if (outdated_.any()) {
    if (std::optional<Fault> fault = refresh()) {
      return *std::move(fault);
    }
  }
  return std::span<const NetworkInterface>(interfaces_);
}

Result<NetworkCounters> RtnetlinkSource::counters(std::size_t position) {
  const Rtnetlink::Link& link = links_[position].link;
  if (statisticsIndex_ != link.index) {
    statisticsIndex_ = link.index;
    statistics_ = LinkStatistics(openLinkFolder(sysfsRoot_, link.name, link.index));
  }
  if (statistics_.isOpen()) {
    if (const auto counters = statistics_.read()) {
      return *counters;
    }
    // The device has gone, perhaps to come back under the same index: ask the kernel,
    // and look for new files the next time.
    statisticsIndex_.reset();
    statistics_ = LinkStatistics();
  }
  return client_.linkCounters(link.index);
}

std::string_view RtnetlinkSource::mechanism() const {
  return statistics_.isOpen() ? "sysfs" : "rtnetlink";
}

// Reads anew what is outdated. Only the links are indispensable: without addresses or
// routes there is less to choose from, and they are tried again the next time.
std::optional<Fault> RtnetlinkSource::refresh() {
  using namespace Rtnetlink;
  if (outdated_.links) {
    const Result<Dump> links = client_.dumpLinks();
    if (!links) {
      return links.fault();
    }
    takeLinks(parseLinks(links->messages));
    outdated_.links = !links->isConsistent;
  }
  if (outdated_.addresses) {
    const Result<Dump> addresses = client_.dumpAddresses();
    addressedIndexes_ =
        addresses ? parseAddressedLinks(addresses->messages) : std::vector<std::uint32_t>();
    outdated_.addresses = !addresses || !addresses->isConsistent;
  }
  if (outdated_.routes) {
    const Result<Dump> routes = client_.dumpRoutes();
    routes_ = routes ? parseDefaultRoutes(routes->messages) : std::vector<DefaultRoute>();
    outdated_.routes = !routes || !routes->isConsistent;
  }
  nameAddressedInterfaces();
  findPrimaryInterface();
  return std::nullopt;
}

void RtnetlinkSource::takeLinks(std::vector<Rtnetlink::Link> links) {
  std::vector<KnownLink> known;
  known.reserve(links.size());
  for (Rtnetlink::Link& link : links) {
    // A link keeps its device for life, so sysfs is asked once.
    const auto before = std::find_if(links_.begin(), links_.end(), [&](const KnownLink& other) {
      return other.link.index == link.index && other.link.kind == link.kind &&
             other.link.name == link.name;
    });
    const bool hasDevice = before != links_.end()
                               ? before->hasHardware
                               : hasHardware(openLinkFolder(sysfsRoot_, link.name, link.index));
    known.push_back({std::move(link), hasDevice});
  }
  links_ = std::move(known);

  const std::vector<bool> physical = physicalLinks(links_);
  interfaces_.clear();
  for (std::size_t position = 0; position < links_.size(); ++position) {
    const Rtnetlink::Link& link = links_[position].link;
    interfaces_.push_back(
        {repairedUtf8(link.name), link.index, (link.flags & IFF_UP) != 0, physical[position]});
  }
  if (!statistics_.isOpen()) {
    statisticsIndex_.reset();
  }
}

void RtnetlinkSource::nameAddressedInterfaces() {
  addressed_.clear();
  for (const std::uint32_t index : addressedIndexes_) {
    if (const NetworkInterface* interface = interfaceAt(index)) {
      addressed_.insert(interface->name);
    }
  }
}

// The kernel drops a route when its device goes down, but may still have listed it.
void RtnetlinkSource::findPrimaryInterface() {
  const NetworkInterface* best = nullptr;
  std::uint32_t bestMetric = 0;
  for (const Rtnetlink::DefaultRoute& route : routes_) {
    const NetworkInterface* interface = interfaceAt(route.interface);
    if (interface != nullptr && interface->isUp && (best == nullptr || route.metric < bestMetric)) {
      best = interface;
      bestMetric = route.metric;
    }
  }
  primary_ = best != nullptr ? std::optional(best->name) : std::nullopt;
}

const NetworkInterface* RtnetlinkSource::interfaceAt(std::uint32_t index) const {
  const auto found =
      std::find_if(interfaces_.begin(), interfaces_.end(),
                   [&](const NetworkInterface& interface) { return interface.index == index; });
  return found != interfaces_.end() ? &*found : nullptr;
}

}  // namespace vantora
