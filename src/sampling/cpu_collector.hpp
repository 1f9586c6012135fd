// SPDX-License-Identifier: MIT
//
// Turns cumulative tick counters into the usage of the whole machine in percent.
#pragma once

#include <optional>

#include "model/sample.hpp"
#include "runtime/clock.hpp"
#include "sampling/tick_counters.hpp"

namespace vantora {

/// Used on the sampling queue only. Counters and clock must outlive it.
class CPUCollector {
 public:
  CPUCollector(TickCounters& counters, const Clock& clock) : counters_(counters), clock_(clock) {}

  /// One reading, compared with the one before. The first one, and one whose counters
  /// allow no percentage, waits for the next; a failed one leaves the base as it is.
  [[nodiscard]] MetricSample sample();

  /// The next reading is a first one again.
  void reset() { previous_.reset(); }

 private:
  TickCounters& counters_;
  const Clock& clock_;
  std::optional<CPUTicks> previous_;
};

}  // namespace vantora
