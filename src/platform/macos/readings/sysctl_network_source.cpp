// SPDX-License-Identifier: MIT
#include "platform/macos/readings/sysctl_network_source.hpp"

#include <SystemConfiguration/SystemConfiguration.h>
#include <sys/types.h>
// The order matters to the system's headers.
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/sysctl.h>

#include <memory>
#include <utility>

#include "platform/macos/base/core_foundation.hpp"

namespace vantora {
namespace {

std::optional<std::size_t> interfaceTable(void* buffer, std::size_t size) {
  // sysctl takes a pointer to what it does not change.
  auto name = InterfaceListReader::sysctlName;
  if (sysctl(name.data(), static_cast<u_int>(name.size()), buffer, &size, nullptr, 0) != 0) {
    return std::nullopt;
  }
  return size;
}

bool isReachable(const sockaddr* address) {
  if (address == nullptr) {
    return false;
  }
  if (address->sa_family == AF_INET) {
    return true;
  }
  if (address->sa_family != AF_INET6) {
    return false;
  }
  const auto* ip6 = reinterpret_cast<const sockaddr_in6*>(address);
  return !IN6_IS_ADDR_LINKLOCAL(&ip6->sin6_addr);
}

}  // namespace

Result<std::span<const NetworkInterface>> SysctlNetworkSource::read() {
  asked_ = 0;
  auto list = InterfaceListReader::read(*this);
  names_.resize(asked_);
  if (!list) {
    list_ = {};
    return list.fault();
  }
  list_ = std::move(list).value();
  return std::span<const NetworkInterface>(list_.interfaces);
}

Result<NetworkCounters> SysctlNetworkSource::counters(std::size_t position) {
  if (position >= list_.counters.size()) {
    return Fault::absent();
  }
  return list_.counters[position];
}

std::optional<std::string> SysctlNetworkSource::primaryInterface() {
  // Without a store of one's own the call opens a session for itself.
  const CFOwned<CFPropertyListRef> value(
      SCDynamicStoreCopyValue(nullptr, CFSTR("State:/Network/Global/IPv4")));
  const CFDictionaryRef dictionary = asDictionary(value.get());
  if (dictionary == nullptr) {
    return std::nullopt;
  }
  return asText(CFDictionaryGetValue(dictionary, kSCDynamicStorePropNetPrimaryInterface));
}

const InterfaceNames& SysctlNetworkSource::addressedInterfaces() {
  addressed_.clear();
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) {
    return addressed_;
  }
  const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owned(first, &freeifaddrs);
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    if (isReachable(entry->ifa_addr)) {
      addressed_.emplace(entry->ifa_name);
    }
  }
  return addressed_;
}

std::optional<std::size_t> SysctlNetworkSource::neededBytes() {
  return interfaceTable(nullptr, 0);
}

std::optional<std::size_t> SysctlNetworkSource::fill(std::span<std::byte> buffer) {
  return interfaceTable(buffer.data(), buffer.size());
}

std::optional<std::string> SysctlNetworkSource::nameOfIndex(std::uint32_t index) {
  const std::size_t position = asked_++;
  if (position < names_.size() && names_[position].index == index) {
    return names_[position].name;
  }
  // From here on the table is another one.
  names_.resize(position);
  char name[IF_NAMESIZE];
  const bool hasName = if_indextoname(index, name) != nullptr;
  names_.push_back({index, hasName ? std::optional<std::string>(name) : std::nullopt});
  return names_.back().name;
}

}  // namespace vantora
