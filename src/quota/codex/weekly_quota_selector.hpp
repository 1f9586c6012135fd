// SPDX-License-Identifier: MIT
//
// Chooses the one weekly window of a rate-limits answer, or says why there is none. It
// never guesses between several. Stateless; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/quota_state.hpp"
#include "model/time.hpp"
#include "quota/codex/rate_limits.hpp"

namespace vantora {

struct CodexQuotaReading {
  double usedPercent = 0;  ///< Finite, not negative; may exceed 100.
  std::optional<WallTime> resetAt;
  std::string limitID;
  std::optional<std::string> name;
  std::optional<std::string> accountID;
  std::optional<bool> ordinaryUsageAllowed;
  bool overUsed = false;  ///< More than 100 percent.

  bool operator==(const CodexQuotaReading&) const = default;
};

struct CodexQuotaSelection {
  enum class Outcome {
    ready,
    weeklyUnavailable,        ///< No usable weekly window.
    selectionRequired,        ///< Several weekly windows.
    selectedCategoryMissing,  ///< The answer does not offer the chosen category.
  };
  Outcome outcome = Outcome::weeklyUnavailable;
  std::optional<CodexQuotaReading> reading;  ///< Exactly when `ready`.
  /// Every category that the answer offers, weekly or not, ascending by the bytes of `id`.
  std::vector<CodexQuotaCandidate> candidates;

  bool operator==(const CodexQuotaSelection&) const = default;
};

namespace WeeklyQuotaSelector {

/// The length of a weekly window, exactly.
inline constexpr std::int64_t weekMinutes = 10'080;

/// The category of an answer that names none.
inline constexpr std::string_view unnamedCategory = "compatibilidade";

/// `selectedLimitID` is the category that the user chose; absent means automatic.
[[nodiscard]] CodexQuotaSelection select(const CodexRateLimits::Envelope& envelope,
                                         const std::optional<std::string>& selectedLimitID);

/// As above, from the answer's JSON; nothing when it cannot be decoded.
[[nodiscard]] std::optional<CodexQuotaSelection> select(
    std::string_view data, const std::optional<std::string>& selectedLimitID);

}  // namespace WeeklyQuotaSelector
}  // namespace vantora
