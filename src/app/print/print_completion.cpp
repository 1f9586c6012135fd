// SPDX-License-Identifier: MIT
#include "app/print/print_completion.hpp"

#include "sampling/sampling_coordinator.hpp"

namespace vantora::PrintCompletion {
namespace {

bool isStillConnecting(FamilySet shown, const MetricSnapshot& snapshot) {
  return (shown.contains(MetricFamily::codex) &&
          snapshot.codex.status == CodexQuotaStatus::connecting) ||
         (shown.contains(MetricFamily::claude) &&
          snapshot.claude.status == ClaudeQuotaStatus::connecting);
}

}  // namespace

bool isComplete(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                int samplingRounds) {
  const int needed = SamplingCoordinator::startsTimer(configuration) ? 2 : 1;
  return samplingRounds >= needed && !isStillConnecting(configuration.families(), snapshot);
}

}  // namespace vantora::PrintCompletion
