// SPDX-License-Identifier: MIT
//
// Temperatures and fans of an Apple-silicon Mac, from the System Management Controller.
#pragma once

#include <array>
#include <memory>
#include <optional>

#include "runtime/clock.hpp"
#include "sampling/apple/smc_reader.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora {

/// Opens the controller only while a sensor metric is demanded. After three passes in a row
/// with a failed reading, and when the controller cannot be opened, it lets 60 s of uptime
/// go by before it opens again. The number of fans and their maxima are read once for each
/// opening, and only if a fan was demanded then. Not thread-safe; used on the sampling queue
/// only.
class SensorCollector final : public SensorSource {
 public:
  /// `clock` must outlive the collector.
  SensorCollector(SMCOpener opener, const Clock& clock);

  void configure(MetricSet demand) override;
  [[nodiscard]] SampleTable sample(MetricSet demand) override;
  void reset() override;

 private:
  static constexpr std::size_t fansRead = 2;
  struct Pass;

  void discoverFans();
  MetricSample batteryTemperature(Pass& pass);
  MetricSample cpuTemperature(Pass& pass);
  MetricSample fan(MetricID metric, Pass& pass);
  std::optional<double> fanRPM(std::size_t index, Pass& pass);
  void account(const Pass& pass);
  void close();

  SMCOpener opener_;
  const Clock& clock_;
  std::unique_ptr<SMCReader> reader_;
  Seconds retryAfter_{0};
  std::optional<int> fanCount_;
  std::array<std::optional<double>, fansRead> fanMaximum_;  ///< Revolutions per minute.
  int consecutiveFailures_ = 0;
};

}  // namespace vantora
