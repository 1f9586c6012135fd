// SPDX-License-Identifier: MIT
#include "sampling/cpu_collector.hpp"

#include <string>
#include <utility>

#include "model/metric_math.hpp"

namespace vantora {

MetricSample CPUCollector::sample() {
  const Result<CPUTicks> ticks = counters_.read();
  if (!ticks) {
    return MetricSample::unavailable(ticks.fault().detail);
  }
  const TickTexts texts = counters_.texts();
  const std::optional<CPUTicks> previous = std::exchange(previous_, *ticks);
  if (!previous) {
    return MetricSample::waiting(std::string(texts.reading));
  }
  const std::optional<double> percentage =
      MetricMath::percentage(ticks->active, ticks->idle, previous->active, previous->idle);
  if (!percentage) {
    return MetricSample::waiting(std::string(texts.noDelta));
  }
  return MetricSample::valid(*percentage, std::string(texts.reading), clock_.now());
}

}  // namespace vantora
