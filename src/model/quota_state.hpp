// SPDX-License-Identifier: MIT
//
// The whole state of each quota integration, as a snapshot carries it. The providers
// are the only writers; formatters, renderer and settings window read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/quota_settings.hpp"
#include "model/time.hpp"

namespace vantora {

/// A quota value is shown for less than this long after the query that brought it.
inline constexpr Seconds quotaValueLifetime{1800};

/// A category of limits that the Codex service offered.
struct CodexQuotaCandidate {
  std::string id;
  std::optional<std::string> name;

  /// "name (id)", or the id alone.
  [[nodiscard]] std::string title() const;
  bool operator==(const CodexQuotaCandidate&) const = default;
};

enum class CodexQuotaStatus : std::uint8_t {
  disabled,
  dependencyMissing,
  connecting,
  needsAuthentication,
  ready,
  stale,
  weeklyUnavailable,
  selectionRequired,
  permissionDenied,
  unsupportedVersion,
  error,
};

[[nodiscard]] std::string_view rawText(CodexQuotaStatus status);

struct CodexQuotaState {
  CodexQuotaStatus status = CodexQuotaStatus::disabled;
  std::optional<double> usedPercent;
  std::optional<WallTime> resetAt;
  std::optional<WallTime> lastSuccess;
  std::optional<std::string> limitID;
  std::vector<CodexQuotaCandidate> candidates;
  std::string message = "Integração desativada.";
  std::optional<bool> ordinaryUsageAllowed;
  std::optional<std::string> accountID;
  CodexQuotaSettings settings;

  /// Whether the value may be shown: ready or stale, and read less than 30 minutes ago.
  [[nodiscard]] bool isPresentable(WallTime now) const;
  bool operator==(const CodexQuotaState&) const = default;
};

enum class ClaudeQuotaStatus : std::uint8_t {
  disabled,
  dependencyMissing,
  connecting,
  needsAuthentication,
  ready,
  stale,
  limitsUnavailable,
  unsupportedVersion,
  error,
};

[[nodiscard]] std::string_view rawText(ClaudeQuotaStatus status);

struct ClaudeQuotaState {
  ClaudeQuotaStatus status = ClaudeQuotaStatus::disabled;
  std::optional<double> weeklyUsed;  ///< Percent, as reported; may exceed 100.
  std::optional<WallTime> weeklyResetAt;
  std::optional<double> sessionUsed;  ///< Percent of the five-hour window.
  std::optional<WallTime> sessionResetAt;
  std::optional<WallTime> lastSuccess;
  std::string message = "Integração desativada.";
  ClaudeQuotaSettings settings;  ///< Those in force, so that formatting needs nothing else.

  /// Whether a value may be shown: ready or stale, and read less than 30 minutes ago.
  [[nodiscard]] bool isPresentable(WallTime now) const;
  bool operator==(const ClaudeQuotaState&) const = default;
};

}  // namespace vantora
