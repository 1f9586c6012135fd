// SPDX-License-Identifier: MIT
//
// Whatever decodes yields a selection that keeps its promises, for the automatic choice
// and for every category that was offered.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "quota/codex/codex_quota_formatter.hpp"
#include "quota/codex/weekly_quota_selector.hpp"

namespace {

using namespace vantora;
using Outcome = CodexQuotaSelection::Outcome;

void require(bool isKept) {
  if (!isKept) {
    std::abort();
  }
}

void check(const CodexQuotaSelection& selection) {
  require((selection.outcome == Outcome::ready) == selection.reading.has_value());
  require(std::is_sorted(
      selection.candidates.begin(), selection.candidates.end(),
      [](const CodexQuotaCandidate& a, const CodexQuotaCandidate& b) { return a.id < b.id; }));
  if (!selection.reading) {
    return;
  }
  const CodexQuotaReading& reading = *selection.reading;
  require(std::isfinite(reading.usedPercent) && reading.usedPercent >= 0);
  require(reading.overUsed == (reading.usedPercent > 100));
  CodexQuotaState state;
  state.status = CodexQuotaStatus::ready;
  state.usedPercent = reading.usedPercent;
  state.resetAt = reading.resetAt;
  const WallTime now = wallTimeFromUnix(1'790'000'000);
  state.lastSuccess = now;
  for (const MetricID metric : {MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset}) {
    const auto text = CodexQuotaFormatter::text(metric, state, now);
    require(text && !text->empty() && text->size() <= 16);
  }
  (void)CodexQuotaFormatter::nextVisibleChange(state, now);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto automatic = WeeklyQuotaSelector::select(text, std::nullopt);
  if (!automatic) {
    return 0;
  }
  check(*automatic);
  require(automatic->outcome != Outcome::selectedCategoryMissing);
  for (std::size_t index = 0; index < std::min<std::size_t>(automatic->candidates.size(), 4);
       ++index) {
    const auto chosen = WeeklyQuotaSelector::select(text, automatic->candidates[index].id);
    require(chosen.has_value());
    check(*chosen);
    require(chosen->outcome != Outcome::selectedCategoryMissing);
    require(chosen->candidates == automatic->candidates);
  }
  return 0;
}
