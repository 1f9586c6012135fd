// SPDX-License-Identifier: MIT
//
// The machine's network interfaces and their byte counters, as the network collector
// asks for them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "model/result.hpp"

namespace vantora {

struct NetworkInterface {
  std::string name;         ///< UTF-8, bad bytes repaired.
  std::uint32_t index = 0;  ///< The kernel's. Another one under the same name is another device.
  bool isUp = false;        ///< Administratively up: IFF_UP.
  bool isPhysical = false;  ///< Hardware that carries the machine's traffic; nothing virtual.

  bool operator==(const NetworkInterface&) const = default;
};

/// Bytes since the interface came to be, 64 bits wide.
struct NetworkCounters {
  std::uint64_t received = 0;
  std::uint64_t sent = 0;

  bool operator==(const NetworkCounters&) const = default;
};

/// A set of interface names that can be asked with any text.
using InterfaceNames = std::set<std::string, std::less<>>;

/// Table and counters are two questions, because one kernel answers both at once and
/// another is cheapest when asked for the counters of one interface only. Used on the
/// sampling queue only.
class NetworkSource {
 public:
  virtual ~NetworkSource() = default;

  /// All interfaces in the kernel's order; valid until the next call. A fault's detail
  /// is the whole source text of the samples that report it.
  [[nodiscard]] virtual Result<std::span<const NetworkInterface>> read() = 0;

  /// The counters of the interface at `position` of the table that read() gave last:
  /// as new as that table or newer. Absent when the interface has vanished since;
  /// failed with a whole source text otherwise.
  [[nodiscard]] virtual Result<NetworkCounters> counters(std::size_t position) = 0;

  /// The interface that the machine reaches the world by, or the hardware that carries it;
  /// nothing when there is none or it could not be found out.
  [[nodiscard]] virtual std::optional<std::string> primaryInterface() = 0;

  /// Names of the interfaces that have an IPv4 address, or an IPv6 address that is not
  /// link-local (outside fe80::/10), and of the hardware that carries such an interface
  /// (below a bridge or a VLAN) where the source knows it; empty when it could not be found
  /// out. Valid until the next call of the source.
  [[nodiscard]] virtual const InterfaceNames& addressedInterfaces() = 0;

  /// The system's interface that the counters came through, for source texts. Lives as
  /// long as the program.
  [[nodiscard]] virtual std::string_view mechanism() const = 0;
};

}  // namespace vantora
