// SPDX-License-Identifier: MIT
//
// The two kinds of time: an instant of the user's calendar, and seconds of system
// uptime. Only a Clock (runtime/clock.hpp) produces either.
#pragma once

#include <chrono>

namespace vantora {

/// An instant of the wall clock: when something was read, when a quota renews.
using WallTime = std::chrono::system_clock::time_point;

/// A span, or an instant counted from the machine's start, in seconds. Intervals,
/// deadlines and back-offs are measured in it, never in wall-clock time.
using Seconds = std::chrono::duration<double>;

/// From `earlier` to `later`, negative when they stand the other way round.
[[nodiscard]] inline Seconds secondsBetween(WallTime earlier, WallTime later) {
  return std::chrono::duration_cast<Seconds>(later - earlier);
}

/// The instant `seconds` after 1970-01-01T00:00:00Z.
[[nodiscard]] inline WallTime wallTimeFromUnix(double seconds) {
  return WallTime{std::chrono::duration_cast<WallTime::duration>(Seconds{seconds})};
}

/// Quota resets are believed only strictly between 1970 and 2100-01-01T00:00:00Z.
inline constexpr double latestBelievableUnixTime = 4'102'444'800.0;

}  // namespace vantora
