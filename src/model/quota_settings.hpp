// SPDX-License-Identifier: MIT
//
// The user's settings of the two quota integrations, as the configuration holds them.
#pragma once

#include <optional>
#include <string>

namespace vantora {

/// Whether queries may be this many minutes apart: 1, 3, 5 or 10.
[[nodiscard]] constexpr bool isQuotaInterval(int minutes) {
  return minutes == 1 || minutes == 3 || minutes == 5 || minutes == 10;
}

struct CodexQuotaSettings {
  /// The longest category identifier that is kept, in bytes of UTF-8.
  static constexpr std::size_t maxLimitIDBytes = 100;

  bool enabled = false;
  int intervalMinutes = 3;                     ///< Between two automatic queries.
  std::optional<std::string> selectedLimitID;  ///< Absent: automatic, when unambiguous.
  bool showUsed = false;                       ///< The used share instead of the remaining one.
  bool oneDecimal = false;
  bool showResetDate = false;  ///< The renewal as a date instead of a countdown.

  [[nodiscard]] bool isValid() const {
    return isQuotaInterval(intervalMinutes) &&
           (!selectedLimitID || selectedLimitID->size() <= maxLimitIDBytes);
  }
  bool operator==(const CodexQuotaSettings&) const = default;
};

struct ClaudeQuotaSettings {
  bool enabled = false;
  int intervalMinutes = 3;  ///< Between two automatic queries.
  bool showUsed = false;    ///< The used share instead of the remaining one.
  bool oneDecimal = false;

  [[nodiscard]] bool isValid() const { return isQuotaInterval(intervalMinutes); }
  bool operator==(const ClaudeQuotaSettings&) const = default;
};

}  // namespace vantora
