// SPDX-License-Identifier: MIT
//
// The readings as gauges for Prometheus.
#pragma once

#include <string>

#include "app/print/print_report.hpp"
#include "model/metric.hpp"

namespace vantora::OpenMetrics {

/// What a machine that is watched from elsewhere reports: every metric that has a source,
/// whatever the user's modules show.
[[nodiscard]] MetricSet allReadings();

/// The readings of one moment in the text form of OpenMetrics
/// (https://github.com/prometheus/OpenMetrics), kept to what Prometheus's older text format
/// has as well, because node_exporter's textfile collector reads that one. Names and units
/// follow Prometheus's conventions: base units, shares from 0 to 1, instants instead of ages.
/// A reading that is missing has no line, and a family without one is left out.
[[nodiscard]] std::string text(const PrintReport& report);

}  // namespace vantora::OpenMetrics
