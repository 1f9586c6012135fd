// SPDX-License-Identifier: MIT
#include "settings/agent/metric_readings.hpp"

#include <string>
#include <utility>

#include "status/metric_formatter.hpp"

namespace vantora {
namespace {

constexpr const char* pausedText = "Coleta pausada";
constexpr const char* waitingText = "Aguardando amostra";

// Of either provider's status.
template <typename Status>
Quality qualityOf(Status status) {
  switch (status) {
    case Status::ready:
      return Quality::valid;
    case Status::stale:
      return Quality::stale;
    case Status::connecting:
      return Quality::waiting;
    case Status::error:
      return Quality::temporaryError;
    default:
      return Quality::unavailable;
  }
}

template <typename State>
void fillFromQuota(const State& state, const char* source, MetricReading& reading) {
  reading.quality = qualityOf(state.status);
  reading.source = source;
  reading.sampledAt = state.lastSuccess;
  // A value that the service did not report leaves a dash behind a query that succeeded.
  if (reading.quality != Quality::valid || !MetricFormatter::isReading(reading.text)) {
    reading.reason = state.message;
  }
}

std::string reasonOf(const MetricSample& sample, bool isPaused) {
  if (sample.quality == Quality::valid) {
    return {};
  }
  if (isPaused) {
    return pausedText;
  }
  const bool isAwaited = sample.quality == Quality::stale || sample.quality == Quality::waiting;
  return isAwaited ? waitingText : sample.source;
}

MetricReading readingOf(MetricID metric, const AppConfiguration& configuration,
                        const MetricSnapshot& snapshot, WallTime now) {
  MetricReading reading;
  reading.metric = metric;
  reading.text = MetricFormatter::text(metric, snapshot, now);
  const auto wanted = family(metric);
  if (wanted == MetricFamily::codex) {
    fillFromQuota(snapshot.codex, "Codex App Server", reading);
  } else if (wanted == MetricFamily::claude) {
    fillFromQuota(snapshot.claude, "Claude Code", reading);
  } else {
    // A metric that no collector has looked at yet is not one that this machine lacks.
    const bool isAwaited = wanted && snapshot.samples.find(metric) == nullptr;
    const MetricSample sample = isAwaited ? MetricSample::waiting(waitingText) : snapshot[metric];
    reading.quality = sample.quality;
    reading.source = sample.source;
    reading.sampledAt = sample.sampledAt;
    reading.reason = reasonOf(sample, configuration.paused);
  }
  return reading;
}

}  // namespace

std::vector<MetricReading> metricReadings(const AppConfiguration& configuration,
                                          const MetricSnapshot& snapshot, WallTime now) {
  std::vector<MetricReading> readings;
  for (const MetricID metric : configuration.demand()) {
    readings.push_back(readingOf(metric, configuration, snapshot, now));
  }
  return readings;
}

}  // namespace vantora
