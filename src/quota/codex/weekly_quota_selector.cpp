// SPDX-License-Identifier: MIT
#include "quota/codex/weekly_quota_selector.hpp"

#include <algorithm>
#include <cmath>
#include <map>

namespace vantora::WeeklyQuotaSelector {
namespace {

using CodexRateLimits::Bucket;
using CodexRateLimits::Envelope;
using CodexRateLimits::Window;
using Outcome = CodexQuotaSelection::Outcome;

struct Candidate {
  CodexQuotaCandidate category;
  Window window;
};

// The categories by id, so that everything that follows is in ascending order.
std::map<std::string, Bucket> categoriesOf(const Envelope& envelope) {
  if (envelope.rateLimitsByLimitId) {
    return *envelope.rateLimitsByLimitId;
  }
  if (envelope.rateLimits) {
    return {{envelope.rateLimits->limitId.value_or(std::string(unnamedCategory)),
             *envelope.rateLimits}};
  }
  return {};
}

std::optional<WallTime> resetOf(const Window& window) {
  if (!window.resetsAt || *window.resetsAt <= 0) {
    return std::nullopt;
  }
  const auto seconds = static_cast<double>(*window.resetsAt);
  return seconds < latestBelievableUnixTime ? std::optional(wallTimeFromUnix(seconds))
                                            : std::nullopt;
}

CodexQuotaReading readingOf(const Envelope& envelope, const Candidate& weekly) {
  return {.usedPercent = weekly.window.usedPercent,
          .resetAt = resetOf(weekly.window),
          .limitID = weekly.category.id,
          .name = weekly.category.name,
          .accountID = envelope.accountId,
          .ordinaryUsageAllowed = envelope.ordinaryUsageAllowed,
          .overUsed = weekly.window.usedPercent > 100};
}

}  // namespace

CodexQuotaSelection select(const Envelope& envelope,
                           const std::optional<std::string>& selectedLimitID) {
  CodexQuotaSelection selection;
  std::vector<Candidate> weekly;
  bool isSelectedOffered = false;
  for (const auto& [id, bucket] : categoriesOf(envelope)) {
    const CodexQuotaCandidate category{.id = id, .name = bucket.limitName};
    selection.candidates.push_back(category);
    if (selectedLimitID && *selectedLimitID != id) {
      continue;
    }
    isSelectedOffered = true;
    for (const auto& window : {bucket.primary, bucket.secondary}) {
      if (window && window->windowDurationMins == weekMinutes) {
        weekly.push_back({category, *window});
      }
    }
  }
  if (selectedLimitID && !isSelectedOffered) {
    selection.outcome = Outcome::selectedCategoryMissing;
  } else if (weekly.size() > 1) {
    selection.outcome = Outcome::selectionRequired;
  } else if (weekly.size() == 1 && std::isfinite(weekly.front().window.usedPercent) &&
             weekly.front().window.usedPercent >= 0) {
    selection.outcome = Outcome::ready;
    selection.reading = readingOf(envelope, weekly.front());
  }
  return selection;
}

std::optional<CodexQuotaSelection> select(std::string_view data,
                                          const std::optional<std::string>& selectedLimitID) {
  const std::optional<Envelope> envelope = CodexRateLimits::decode(data);
  return envelope ? std::optional(select(*envelope, selectedLimitID)) : std::nullopt;
}

}  // namespace vantora::WeeklyQuotaSelector
