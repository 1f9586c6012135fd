// SPDX-License-Identifier: MIT
#include "quota/retry_backoff.hpp"

#include <algorithm>
#include <cstdint>
#include <random>

namespace vantora {

double systemRandomFraction() {
  static_assert(std::random_device::max() == UINT32_MAX);
  return std::random_device{}() * 0x1p-32;
}

Seconds RetryBackoff::afterFailure(Seconds interval) {
  const Seconds wait = waits[std::min(failures_, waits.size() - 1)];
  ++failures_;
  return std::max(wait, interval) + maxJitter * random_();
}

}  // namespace vantora
