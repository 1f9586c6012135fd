// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_source.hpp"

#include <linux/if.h>
#include <sys/socket.h>

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
    statistics_ = LinkStatistics(openLinkFolder(sysfsRoot_, link));
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
    outdated_.routes = !readRoutes(AF_INET);
    if (!outdated_.routes && routes_.empty()) {
      outdated_.routes = !readRoutes(AF_INET6);
    }
  }
  nameAddressedInterfaces();
  findPrimaryInterface();
  return std::nullopt;
}

// False when they have to be read again.
bool RtnetlinkSource::readRoutes(std::uint8_t family) {
  const Result<Rtnetlink::Dump> dump = client_.dumpRoutes(family);
  routes_ =
      dump ? Rtnetlink::parseDefaultRoutes(dump->messages) : std::vector<Rtnetlink::DefaultRoute>();
  return dump && dump->isConsistent;
}

void RtnetlinkSource::takeLinks(std::vector<Rtnetlink::Link> links) {
  std::vector<KnownLink> known;
  known.reserve(links.size());
  for (Rtnetlink::Link& link : links) {
    // A link keeps its device for life, so sysfs is asked once; again with a new address,
    // because the one before may have been sysfs's by then, or not yet.
    const auto before = std::find_if(links_.begin(), links_.end(), [&](const KnownLink& other) {
      return other.link.index == link.index && other.link.kind == link.kind &&
             other.link.name == link.name && other.link.address == link.address;
    });
    const bool hasDevice = before != links_.end() ? before->hasHardware
                                                  : hasHardware(openLinkFolder(sysfsRoot_, link));
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
    for (const std::size_t position : linksUnder(links_, index)) {
      // Of what lies below an addressed link, hardware counts as addressed.
      if (interfaces_[position].index == index || interfaces_[position].isPhysical) {
        addressed_.insert(interfaces_[position].name);
      }
    }
  }
}

// The kernel drops a route when its device goes down, but may still have listed it.
void RtnetlinkSource::findPrimaryInterface() {
  primary_.reset();
  std::optional<std::uint32_t> bestMetric;
  for (const Rtnetlink::DefaultRoute& route : routes_) {
    if (bestMetric && route.metric >= *bestMetric) {
      continue;
    }
    const std::vector<std::size_t> carriers = linksUnder(links_, route.interface);
    if (carriers.empty() || !interfaces_[carriers.front()].isUp) {
      continue;
    }
    bestMetric = route.metric;
    const auto carrier = std::find_if(carriers.begin(), carriers.end(), [&](std::size_t position) {
      return interfaces_[position].isPhysical && interfaces_[position].isUp;
    });
    primary_ = interfaces_[carrier != carriers.end() ? *carrier : carriers.front()].name;
  }
}

}  // namespace vantora
