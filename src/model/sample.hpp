// SPDX-License-Identifier: MIT
//
// One reading, and the set of readings that one sampling round produces. Plain values
// that cross threads as copies.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/metric.hpp"
#include "model/quota_state.hpp"
#include "model/time.hpp"

namespace vantora {

enum class Quality : std::uint8_t {
  valid,           ///< The value is a fresh reading.
  waiting,         ///< No reading yet: a rate needs a second round.
  unavailable,     ///< The source does not exist here, or the metric is never produced.
  temporaryError,  ///< The source exists, but this round's read failed.
  stale,           ///< The value is an older reading, kept.
};

[[nodiscard]] std::string_view rawText(Quality quality);

struct MetricSample {
  /// In the metric's unit: percent (0 to 100), minutes, bytes per second, degrees
  /// Celsius, revolutions per minute or watts. Absent when there is no reading.
  std::optional<double> value;
  Quality quality = Quality::unavailable;
  std::optional<WallTime> sampledAt;
  std::string source;  ///< Where the reading came from or why there is none, in Portuguese.

  [[nodiscard]] static MetricSample valid(double value, std::string source, WallTime now);
  [[nodiscard]] static MetricSample waiting(std::string source);
  [[nodiscard]] static MetricSample unavailable(std::string source);

  bool operator==(const MetricSample&) const = default;
};

/// The samples by metric: a dictionary with one place a metric.
class SampleTable {
 public:
  /// The sample stored for the metric, or null.
  [[nodiscard]] const MetricSample* find(MetricID metric) const;
  void set(MetricID metric, MetricSample sample);
  void erase(MetricID metric);
  /// Takes every sample of `newer` in the place of its own of the metric.
  void merge(SampleTable newer);
  /// The metrics that have a sample.
  [[nodiscard]] MetricSet metrics() const;
  [[nodiscard]] bool empty() const { return metrics().empty(); }
  bool operator==(const SampleTable&) const = default;

 private:
  std::array<std::optional<MetricSample>, metricCount> places_;
};

struct MetricSnapshot {
  SampleTable samples;
  bool batteryOnAC = false;                ///< The machine draws from a power adapter.
  bool batteryCharging = false;            ///< The battery is charging.
  std::optional<std::string> networkName;  ///< The interface whose rates are shown.
  CodexQuotaState codex;
  ClaudeQuotaState claude;

  /// The stored sample; where there is none, an unavailable one that says that the
  /// source is not validated. Everyone who shows a sample reads it through here.
  [[nodiscard]] const MetricSample& operator[](MetricID metric) const;

  bool operator==(const MetricSnapshot&) const = default;
};

}  // namespace vantora
