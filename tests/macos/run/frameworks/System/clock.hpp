// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace standin {

/// Nanoseconds of uptime.
[[nodiscard]] std::uint64_t uptime();

/// The uptime that the calling thread was told last by the system's clock. What counts with
/// time counts up to this instant, so that a rate does not depend on how long the program
/// waited for a processor between asking for the time and for the counter.
[[nodiscard]] std::uint64_t uptimeToldLast();

}  // namespace standin
