// SPDX-License-Identifier: MIT
//
// A network of a test's own: a child process in fresh network and mount namespaces, with
// sysfs mounted to match, in which links are made and removed through the real kernel.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace vantora::test {

/// What a test does to its network. Every operation fails the test when the kernel
/// refuses.
class NetworkNamespace {
 public:
  explicit NetworkNamespace(std::string sysfsRoot) : sysfsRoot_(std::move(sysfsRoot)) {}

  [[nodiscard]] const std::string& sysfsRoot() const { return sysfsRoot_; }

  /// One end of a pair; the other is called NAME with a "p" and is already up. An index
  /// of 0 lets the kernel choose.
  void addPair(const std::string& name, std::uint32_t index = 0) const;
  /// An empty bridge, up; `port` becomes its port.
  void addBridge(const std::string& name, const std::string& port) const;
  void remove(const std::string& name) const;
  void setUp(const std::string& name, bool isUp) const;
  void rename(const std::string& name, const std::string& newName) const;
  void addAddress(const std::string& name, const std::string& address) const;
  /// A default route straight out of the link, of IPv4 or of IPv6.
  void addDefaultRoute(const std::string& name, std::uint32_t metric, bool isIPv6 = false) const;
  /// A frame of that many bytes out of the link, one end of a pair; returns when the other
  /// end has counted it.
  void send(const std::string& name, std::size_t bytes) const;

 private:
  std::string sysfsRoot_;
};

/// Runs the body in a namespace of its own; its failures are the calling test's. Skips
/// the test, with the reason, where the system refuses namespaces.
void inNetworkNamespace(const std::function<void(const NetworkNamespace&)>& body);

}  // namespace vantora::test
