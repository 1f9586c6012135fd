// SPDX-License-Identifier: MIT
//
// The interface table as the sysctl NET_RT_IFLIST2 gives it on macOS: a run of records,
// those of type RTM_IFINFO2 with an if_msghdr2 (net/if.h) that holds the 64-bit
// counters. The walk takes bytes; only the system calls are the adapter's.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/result.hpp"
#include "sampling/network_source.hpp"

namespace vantora {

/// The system calls behind the table.
class InterfaceListCalls {
 public:
  virtual ~InterfaceListCalls() = default;

  /// sysctl without a buffer: the bytes that the table needs. Nothing when it fails.
  [[nodiscard]] virtual std::optional<std::size_t> neededBytes() = 0;

  /// sysctl into `buffer`: the bytes that it filled. Nothing when it fails.
  [[nodiscard]] virtual std::optional<std::size_t> fill(std::span<std::byte> buffer) = 0;

  /// if_indextoname: the name's bytes as they are. Nothing when no interface has the
  /// index any more.
  [[nodiscard]] virtual std::optional<std::string> nameOfIndex(std::uint32_t index) = 0;
};

/// Interfaces and their counters, at the same positions, in the kernel's order.
struct InterfaceList {
  std::vector<NetworkInterface> interfaces;
  std::vector<NetworkCounters> counters;
};

namespace InterfaceListReader {

inline constexpr std::string_view mechanism = "NET_RT_IFLIST2";
inline constexpr std::string_view failure = "sysctl NET_RT_IFLIST2 falhou";

/// {CTL_NET, PF_ROUTE, 0, any address family, NET_RT_IFLIST2, 0}.
inline constexpr std::array<int, 6> sysctlName{4, 17, 0, 0, 6, 0};

/// A table must be smaller than this.
inline constexpr std::size_t tableCap = 4'000'000;

/// The whole table; failed with `failure` when a call fails, or when the needed length
/// is 0 or not below the cap.
[[nodiscard]] Result<InterfaceList> read(InterfaceListCalls& calls);

/// The interfaces of a filled table. Stops where the bytes stop to make sense: a record
/// of length 0, or one that runs past the end.
[[nodiscard]] InterfaceList walk(std::span<const std::byte> table, InterfaceListCalls& calls);

}  // namespace InterfaceListReader
}  // namespace vantora
