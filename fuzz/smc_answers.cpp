// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "sampling/apple/sensor_collector.hpp"

namespace {

using namespace vantora;

constexpr MetricSet sensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};

/// Answers with what is left of the input: a byte that says how the call goes, then the record.
class Controller final : public SMCConnection {
 public:
  explicit Controller(std::span<const std::uint8_t>& rest) : rest_(rest) {}

  std::optional<std::size_t> call(const SMCRecord& input, SMCRecord& output) override {
    const bool isKnown = input[42] == 5 || input[42] == 9;
    if (!isKnown || rest_.empty()) {
      return std::nullopt;
    }
    const std::uint8_t how = rest_.front();
    rest_ = rest_.subspan(1);
    const std::size_t size = std::min(rest_.size(), smcRecordSize);
    std::copy_n(rest_.begin(), size, output.begin());
    rest_ = rest_.subspan(size);
    return how == 0 ? std::nullopt : std::optional(smcRecordSize + how - 1U);
  }

 private:
  std::span<const std::uint8_t>& rest_;
};

class SteppedClock final : public Clock {
 public:
  [[nodiscard]] Seconds uptime() const override { return uptime_; }
  [[nodiscard]] WallTime now() const override { return wallTimeFromUnix(1'700'000'000); }
  void step() { uptime_ += Seconds{20}; }

 private:
  Seconds uptime_{1000};
};

void demandThat(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace

// Whatever the controller answers, every sample is a finite value in its range or says why
// there is none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::span<const std::uint8_t> rest(data, size);
  SteppedClock clock;
  SensorCollector collector([&] { return std::make_unique<Controller>(rest); }, clock);
  for (int pass = 0; pass < 8; ++pass) {
    const SampleTable samples = collector.sample(sensors);
    demandThat(samples.metrics() == sensors);
    for (const MetricID metric : sensors) {
      const MetricSample& sample = *samples.find(metric);
      demandThat(!sample.source.empty());
      demandThat(sample.value.has_value() == (sample.quality == Quality::valid));
      if (sample.value) {
        demandThat(std::isfinite(*sample.value));
        demandThat(!isFan(metric) || *sample.value >= 0);
        demandThat(!(metric == MetricID::fan1Percent || metric == MetricID::fan2Percent) ||
                   *sample.value <= 100);
      }
    }
    clock.step();
  }
  return 0;
}
