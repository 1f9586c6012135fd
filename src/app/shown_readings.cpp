// SPDX-License-Identifier: MIT
#include "app/shown_readings.hpp"

#include <utility>

#include "status/metric_formatter.hpp"

namespace vantora {

bool ShownReadings::take(const MetricSnapshot& snapshot) {
  bool differs = std::exchange(isFirst_, false);
  const auto compare = [&differs](auto& known, const auto& now) {
    if (known != now) {
      known = now;
      differs = true;
    }
  };
  compare(batteryOnAC_, snapshot.batteryOnAC);
  compare(batteryCharging_, snapshot.batteryCharging);
  compare(networkName_, snapshot.networkName);
  for (const MetricID metric : allMetrics) {
    std::optional<Reading>& known = readings_[static_cast<std::size_t>(metric)];
    const MetricSample* sample = snapshot.samples.find(metric);
    if (sample == nullptr) {
      differs = differs || known.has_value();
      known.reset();
      continue;
    }
    if (!known) {
      known = Reading();
      differs = true;
    }
    compare(known->quality, sample->quality);
    compare(known->source, sample->source);
    // No text of the system's readings depends on the time.
    compare(known->text, MetricFormatter::text(metric, snapshot, WallTime()));
  }
  return differs;
}

}  // namespace vantora
