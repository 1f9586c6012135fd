// SPDX-License-Identifier: MIT
//
// Reads the usage answer of Claude Code. Stateless; any thread.
#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "model/time.hpp"

namespace vantora {

/// What the service reports of its two windows. A reset is present only with its
/// share.
struct ClaudeUsageReading {
  std::optional<double> weeklyUsed;  ///< Percent, finite, not negative; may exceed 100.
  std::optional<WallTime> weeklyResetAt;
  std::optional<double> sessionUsed;
  std::optional<WallTime> sessionResetAt;

  /// Whether either share is more than 100 percent.
  [[nodiscard]] bool overUsed() const;
  bool operator==(const ClaudeUsageReading&) const = default;
};

/// Why an answer holds no reading.
enum class ClaudeUsageAbsence {
  planLimitsUnavailable,  ///< The login is not one of a subscription.
  noWindows,              ///< No window holds a usable share.
};

using ClaudeUsageAnswer = std::variant<ClaudeUsageReading, ClaudeUsageAbsence>;

namespace ClaudeUsageParser {

/// The whole answer. Nothing when it cannot be decoded: no JSON object,
/// "rate_limits_available" no boolean, "rate_limits" or a window no object. Inside a
/// window a member of another type counts as missing, and so does a null anywhere.
[[nodiscard]] std::optional<ClaudeUsageAnswer> parseUsageResponse(std::string_view data);

/// What parse() found: a reading, or nothing when no window holds a usable share.
struct Windows {
  std::optional<ClaudeUsageReading> reading;
};

/// The windows alone, without the object around them; nothing when they cannot be decoded.
[[nodiscard]] std::optional<Windows> parse(std::string_view data);

/// The instant so many seconds, or milliseconds beyond 1e11, after 1970-01-01T00:00:00Z;
/// nothing outside of the believable range (model/time.hpp).
[[nodiscard]] std::optional<WallTime> dateFromSeconds(double seconds);

/// The instant of an internet date-time, whose fraction of a second is dropped; nothing
/// outside of the believable range.
[[nodiscard]] std::optional<WallTime> dateFromISO(std::string_view text);

}  // namespace ClaudeUsageParser
}  // namespace vantora
