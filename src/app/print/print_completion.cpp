// SPDX-License-Identifier: MIT
#include "app/print/print_completion.hpp"

namespace vantora::PrintCompletion {
namespace {

bool startsSamplingTimer(const AppConfiguration& configuration) {
  constexpr FamilySet sampledByTimer{MetricFamily::cpu, MetricFamily::network,
                                     MetricFamily::sensors};
  return !configuration.paused && configuration.families().intersects(sampledByTimer);
}

bool isStillConnecting(FamilySet shown, const MetricSnapshot& snapshot) {
  return (shown.contains(MetricFamily::codex) &&
          snapshot.codex.status == CodexQuotaStatus::connecting) ||
         (shown.contains(MetricFamily::claude) &&
          snapshot.claude.status == ClaudeQuotaStatus::connecting);
}

}  // namespace

bool isComplete(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                int samplingRounds) {
  const int needed = startsSamplingTimer(configuration) ? 2 : 1;
  return samplingRounds >= needed && !isStillConnecting(configuration.families(), snapshot);
}

}  // namespace vantora::PrintCompletion
