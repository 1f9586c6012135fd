// SPDX-License-Identifier: MIT
//
// How long to wait before asking again after failures in a row.
#pragma once

#include <array>
#include <cstddef>
#include <functional>

#include "model/time.hpp"

namespace vantora {

/// Draws a fraction, uniform in [0, 1).
using RandomFraction = std::function<double()>;

/// A fraction of 32 random bits from the system's random source. Any thread.
[[nodiscard]] double systemRandomFraction();

class RetryBackoff {
 public:
  /// The minimum wait after the first failure, the second, and so on; the last one applies to all
  /// later failures.
  static constexpr std::array<Seconds, 4> waits{Seconds{180}, Seconds{360}, Seconds{720},
                                                Seconds{1800}};
  /// A random wait up to this is added, so that many machines do not query at once.
  static constexpr Seconds maxJitter{15};

  explicit RetryBackoff(RandomFraction random) : random_(std::move(random)) {}

  /// Counts one more failure and returns the wait before the next attempt: at least `interval`,
  /// the usual time between attempts.
  [[nodiscard]] Seconds afterFailure(Seconds interval);

  void reset() { failures_ = 0; }

 private:
  RandomFraction random_;
  std::size_t failures_ = 0;
};

}  // namespace vantora
