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

/// A fraction of 53 random bits from the system's random source. Any thread.
[[nodiscard]] double systemRandomFraction();

class RetryBackoff {
 public:
  /// The least wait after the first failure, the second, and so on; the last one stands
  /// for all that follow.
  static constexpr std::array<Seconds, 4> waits{Seconds{180}, Seconds{360}, Seconds{720},
                                                Seconds{1800}};
  /// Up to so much is added at random, so that many machines do not ask at once.
  static constexpr Seconds mostJitter{15};

  explicit RetryBackoff(RandomFraction random) : random_(std::move(random)) {}

  /// Counts one more failure. The wait before the next attempt, never shorter than
  /// `interval`, the usual distance of attempts.
  [[nodiscard]] Seconds afterFailure(Seconds interval);

  void reset() { failures_ = 0; }

 private:
  RandomFraction random_;
  std::size_t failures_ = 0;
};

}  // namespace vantora
