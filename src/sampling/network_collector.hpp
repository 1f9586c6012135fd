// SPDX-License-Identifier: MIT
//
// Turns the byte counters of one interface into upload and download rates.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "model/sample.hpp"
#include "runtime/clock.hpp"
#include "sampling/network_source.hpp"

namespace vantora {

/// Both rates in bytes per second, and whose they are.
struct NetworkRates {
  MetricSample upload;
  MetricSample download;
  std::optional<std::string> name;  ///< Absent when no interface was read.
};

/// Whether an interface may be read where the user has chosen none.
[[nodiscard]] inline bool mayCarryTraffic(const NetworkInterface& interface,
                                          const InterfaceNames& addressed) {
  return interface.isUp && interface.isPhysical && addressed.contains(interface.name);
}

/// Used on the sampling queue only. Source and clock must outlive it.
class NetworkCollector {
 public:
  NetworkCollector(NetworkSource& source, const Clock& clock) : source_(source), clock_(clock) {}

  /// One reading of the `preferred` interface, or, when that is absent or empty, of the
  /// primary physical one. Both samples always have the same quality and source.
  [[nodiscard]] NetworkRates sample(const std::optional<std::string>& preferred);

  /// The next reading is a first one again, and nothing is backed off from any more.
  void reset();

 private:
  struct Reading {
    std::string name;
    std::uint32_t index = 0;
    NetworkCounters counters;
    Seconds time{0};  // uptime
  };
  using Table = std::span<const NetworkInterface>;

  Result<Reading> choose(Table table, const std::optional<std::string>& preferred);
  template <typename Condition>
  Result<Reading> readFirst(Table table, const Condition& isWanted);
  NetworkRates compare(const std::optional<Reading>& previous, const Reading& current) const;

  NetworkSource& source_;
  const Clock& clock_;
  std::optional<Reading> previous_;
  Seconds retryAfter_{0};  // uptime before which nothing is read
};

}  // namespace vantora
