// SPDX-License-Identifier: MIT
//
// The bare system calls of CPU and network.
#pragma once

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <string>

#include "platform/linux/network/rtnetlink_source.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/unique_fd.hpp"
#include "sampling/network_collector.hpp"

namespace vantora::bench {

/// One read of a file that is kept open.
class BareTicks {
 public:
  void operator()() const {
    std::array<char, 512> buffer;
    benchmark::DoNotOptimize(::pread(file_.get(), buffer.data(), buffer.size(), 0));
  }

 private:
  UniqueFd file_{::open("/proc/stat", O_RDONLY | O_CLOEXEC)};
};

/// A look for news from the kernel and two counters that are kept open.
class BareNetwork {
 public:
  explicit BareNetwork(const std::string& name)
      : received_(open(name, "rx_bytes")), sent_(open(name, "tx_bytes")) {
    sockaddr_nl groups{};
    groups.nl_family = AF_NETLINK;
    groups.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE;
    (void)::bind(events_.get(), reinterpret_cast<const sockaddr*>(&groups), sizeof groups);
  }

  void operator()() const {
    std::array<char, 128> buffer;
    benchmark::DoNotOptimize(::recv(events_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT));
    benchmark::DoNotOptimize(::pread(received_.get(), buffer.data(), buffer.size(), 0));
    benchmark::DoNotOptimize(::pread(sent_.get(), buffer.data(), buffer.size(), 0));
  }

 private:
  static UniqueFd open(const std::string& name, const char* file) {
    const std::string path = "/sys/class/net/" + name + "/statistics/" + file;
    return UniqueFd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  }

  UniqueFd events_{::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)};
  UniqueFd received_;
  UniqueFd sent_;
};

/// The machine's uplink; the loopback where there is none.
inline std::string interfaceToRead() {
  const SystemClock clock;
  RtnetlinkSource source;
  return NetworkCollector(source, clock).sample(std::nullopt).name.value_or("lo");
}

}  // namespace vantora::bench
