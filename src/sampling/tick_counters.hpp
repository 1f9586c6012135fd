// SPDX-License-Identifier: MIT
//
// The kernel's cumulative processor time, as the CPU collector asks for it.
#pragma once

#include <cstdint>
#include <string_view>

#include "model/result.hpp"

namespace vantora {

/// Time since the machine started, summed over all processors, in the kernel's ticks.
struct CPUTicks {
  std::uint64_t active = 0;  ///< Ticks in which a processor had something to run.
  std::uint64_t idle = 0;    ///< Ticks in which it had nothing to run.

  bool operator==(const CPUTicks&) const = default;
};

/// How the source calls itself in the source texts of samples, in Portuguese.
struct TickTexts {
  std::string_view reading;  ///< The counters were read.
  std::string_view noDelta;  ///< They allow no percentage: reset, or no tick elapsed.
};

/// Used on the sampling queue only.
class TickCounters {
 public:
  virtual ~TickCounters() = default;

  /// The counters as they are now. A fault's detail is the whole source text of the
  /// sample that reports it. Every machine has processors: a fault is always a failure.
  [[nodiscard]] virtual Result<CPUTicks> read() = 0;

  /// Texts that live as long as the program.
  [[nodiscard]] virtual TickTexts texts() const = 0;
};

}  // namespace vantora
