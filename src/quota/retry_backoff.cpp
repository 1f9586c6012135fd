// SPDX-License-Identifier: MIT
#include "quota/retry_backoff.hpp"

#include <algorithm>
#include <cstdint>
#include <random>

namespace vantora {

double systemRandomFraction() {
  std::random_device source;
  const std::uint64_t bits = (std::uint64_t{source()} << 32) | source();
  return static_cast<double>(bits >> 11) * 0x1p-53;
}

Seconds RetryBackoff::afterFailure(Seconds interval) {
  const Seconds wait = waits[std::min(failures_, waits.size() - 1)];
  ++failures_;
  return std::max(wait, interval) + maxJitter * random_();
}

}  // namespace vantora
