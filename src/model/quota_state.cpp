// SPDX-License-Identifier: MIT
#include "model/quota_state.hpp"

#include <array>

namespace vantora {
namespace {

bool isYoung(const std::optional<WallTime>& lastSuccess, WallTime now) {
  return lastSuccess && secondsBetween(*lastSuccess, now) < quotaValueLifetime;
}

constexpr std::array<std::string_view, 11> codexStatusTexts{"disabled",
                                                            "dependencyMissing",
                                                            "connecting",
                                                            "needsAuthentication",
                                                            "ready",
                                                            "stale",
                                                            "weeklyUnavailable",
                                                            "selectionRequired",
                                                            "permissionDenied",
                                                            "unsupportedVersion",
                                                            "error"};

constexpr std::array<std::string_view, 9> claudeStatusTexts{"disabled",
                                                            "dependencyMissing",
                                                            "connecting",
                                                            "needsAuthentication",
                                                            "ready",
                                                            "stale",
                                                            "limitsUnavailable",
                                                            "unsupportedVersion",
                                                            "error"};

}  // namespace

std::string CodexQuotaCandidate::title() const {
  return name ? *name + " (" + id + ")" : id;
}

std::string_view rawText(CodexQuotaStatus status) {
  return codexStatusTexts[static_cast<std::size_t>(status)];
}

bool CodexQuotaState::isPresentable(WallTime now) const {
  const bool hasValue = status == CodexQuotaStatus::ready || status == CodexQuotaStatus::stale;
  return hasValue && usedPercent && isYoung(lastSuccess, now);
}

std::string_view rawText(ClaudeQuotaStatus status) {
  return claudeStatusTexts[static_cast<std::size_t>(status)];
}

bool ClaudeQuotaState::isPresentable(WallTime now) const {
  const bool hasValue = status == ClaudeQuotaStatus::ready || status == ClaudeQuotaStatus::stale;
  return hasValue && (weeklyUsed || sessionUsed) && isYoung(lastSuccess, now);
}

}  // namespace vantora
