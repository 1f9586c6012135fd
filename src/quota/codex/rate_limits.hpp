// SPDX-License-Identifier: MIT
//
// The answer of the Codex App Server's `account/rateLimits/read`, as far as it is used.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vantora::CodexRateLimits {

struct Window {
  double usedPercent = 0;  ///< May exceed 100.
  std::optional<std::int64_t> windowDurationMins;
  std::optional<std::int64_t> resetsAt;  ///< Seconds since 1970-01-01T00:00:00Z.
};

/// One category of limits.
struct Bucket {
  std::optional<std::string> limitId;
  std::optional<std::string> limitName;
  std::optional<Window> primary;
  std::optional<Window> secondary;
};

struct Envelope {
  std::optional<std::string> accountId;
  std::optional<bool> ordinaryUsageAllowed;
  std::optional<Bucket> rateLimits;  ///< The older form, with one category.
  std::optional<std::map<std::string, Bucket>> rateLimitsByLimitId;
};

/// The decoded answer. Nothing when `data` is not JSON, when a window has no
/// `usedPercent`, or when any known member has the wrong type; a null counts as a missing
/// member, except for a category of `rateLimitsByLimitId`. Unknown members are ignored.
[[nodiscard]] std::optional<Envelope> decode(std::string_view data);

}  // namespace vantora::CodexRateLimits
