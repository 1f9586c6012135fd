// SPDX-License-Identifier: MIT
#include "sampling/apple/sensor_collector.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "model/metric_math.hpp"

namespace vantora {
namespace {

constexpr Seconds backOff{60};
constexpr int failuresUntilBackOff = 3;
constexpr MetricSet fanMetrics{MetricID::fan1Percent, MetricID::fan2Percent, MetricID::fan1RPM,
                               MetricID::fan2RPM};

constexpr std::array<std::string_view, 18> cpuKeys{"Tp00", "Tp04", "Tp08", "Tp0C", "Tp0G", "Tp0K",
                                                   "Tp0O", "Tp0R", "Tp0U", "Tp0X", "Tp0a", "Tp0d",
                                                   "Tp0g", "Tp0j", "Tp0m", "Tp0p", "Tp0u", "Tp0y"};

bool isPercent(MetricID metric) {
  return metric == MetricID::fan1Percent || metric == MetricID::fan2Percent;
}

std::size_t fanIndex(MetricID metric) {
  return metric == MetricID::fan1Percent || metric == MetricID::fan1RPM ? 0 : 1;
}

// The controller counts its fans from 0, people from 1.
std::string fanKey(std::size_t index, std::string_view suffix) {
  return std::string(1, 'F').append(std::to_string(index)).append(suffix);
}
std::string fanNumber(std::size_t index) {
  return std::to_string(index + 1);
}

}  // namespace

// One pass: its instant, whether a reading failed, and the speeds read so far (each fan is
// read once, whichever of its metrics comes first).
struct SensorCollector::Pass {
  WallTime now;
  bool failed = false;
  std::array<std::optional<std::optional<double>>, fansRead> rpm;

  MetricSample fail(std::string source) {
    failed = true;
    return MetricSample::unavailable(std::move(source));
  }
};

SensorCollector::SensorCollector(SMCOpener opener, const Clock& clock)
    : opener_(std::move(opener)), clock_(clock) {}

void SensorCollector::configure(MetricSet demand) {
  if (metricsOfFamily(demand, MetricFamily::sensors).empty()) {
    reset();
    return;
  }
  if (reader_ || clock_.uptime() < retryAfter_) {
    return;
  }
  reader_ = SMCReader::open(opener_);
  if (!reader_) {
    retryAfter_ = clock_.uptime() + backOff;
    return;
  }
  if (demand.intersects(fanMetrics)) {
    discoverFans();
  }
}

SampleTable SensorCollector::sample(MetricSet demand) {
  SampleTable samples;
  const MetricSet wanted = metricsOfFamily(demand, MetricFamily::sensors);
  if (wanted.empty()) {
    return samples;
  }
  configure(demand);
  if (!reader_) {
    for (const MetricID metric : wanted) {
      samples.set(metric,
                  MetricSample::unavailable("AppleSMC inacessível; nova tentativa em até 60 s"));
    }
    return samples;
  }
  Pass pass{clock_.now(), false, {}};
  for (const MetricID metric : wanted) {
    if (metric == MetricID::batteryTemperature) {
      samples.set(metric, batteryTemperature(pass));
    } else if (metric == MetricID::cpuTemperature) {
      samples.set(metric, cpuTemperature(pass));
    } else {
      samples.set(metric, fan(metric, pass));
    }
  }
  account(pass);
  return samples;
}

void SensorCollector::reset() {
  close();
  retryAfter_ = Seconds{0};
  consecutiveFailures_ = 0;
}

void SensorCollector::discoverFans() {
  const auto count = reader_->readUInt8("FNum");
  fanCount_ = count ? std::optional<int>(*count) : std::nullopt;
  for (std::size_t index = 0; index < fansRead; ++index) {
    if (!fanCount_ || std::cmp_greater_equal(index, *fanCount_)) {
      continue;
    }
    const auto maximum = reader_->readFloat(fanKey(index, "Mx"));
    fanMaximum_[index] = maximum && *maximum > 0 ? maximum : std::nullopt;
  }
}

MetricSample SensorCollector::batteryTemperature(Pass& pass) {
  const auto first = reader_->readFloat("TB1T");
  const auto second = reader_->readFloat("TB2T");
  if (!first || !second) {
    return pass.fail("AppleSMC · TB1T/TB2T da bateria indisponíveis");
  }
  return MetricSample::valid((*first + *second) / 2,
                             "AppleSMC · média de TB1T e TB2T da bateria · °C", pass.now);
}

// No maximum of some of the sensors: the one that is missing may be the hottest.
MetricSample SensorCollector::cpuTemperature(Pass& pass) {
  std::size_t counted = 0;
  std::optional<double> hottest;
  for (const std::string_view key : cpuKeys) {
    if (const auto value = reader_->readFloat(key)) {
      hottest = hottest ? std::max(*hottest, *value) : *value;
      ++counted;
    }
  }
  if (counted < cpuKeys.size()) {
    return pass.fail("AppleSMC · apenas " + std::to_string(counted) +
                     "/18 sensores Tp* de CPU disponíveis");
  }
  return MetricSample::valid(*hottest, "AppleSMC · maior valor de 18 sensores Tp* de CPU M5 · °C",
                             pass.now);
}

MetricSample SensorCollector::fan(MetricID metric, Pass& pass) {
  const std::size_t index = fanIndex(metric);
  if (!fanCount_ || std::cmp_greater_equal(index, *fanCount_)) {
    return MetricSample::unavailable("Ventoinha " + fanNumber(index) + " não existe neste Mac");
  }
  const auto rpm = fanRPM(index, pass);
  if (!rpm) {
    return pass.fail("AppleSMC · RPM da ventoinha " + fanNumber(index) + " indisponível");
  }
  if (!isPercent(metric)) {
    return MetricSample::valid(*rpm, "AppleSMC · " + fanKey(index, "Ac") + " · RPM", pass.now);
  }
  const auto maximum = fanMaximum_[index];
  const auto percent = maximum ? MetricMath::fanPercent(*rpm, *maximum) : std::nullopt;
  if (!percent) {
    return pass.fail("AppleSMC · máximo da ventoinha " + fanNumber(index) + " inválido");
  }
  return MetricSample::valid(
      *percent,
      "AppleSMC · 100 × " + fanKey(index, "Ac") + "/" + fanKey(index, "Mx") + " · % do RPM máximo",
      pass.now);
}

std::optional<double> SensorCollector::fanRPM(std::size_t index, Pass& pass) {
  auto& read = pass.rpm[index];
  if (!read) {
    const auto rpm = reader_->readFloat(fanKey(index, "Ac"));
    read.emplace(rpm && *rpm >= 0 ? rpm : std::nullopt);
  }
  return *read;
}

void SensorCollector::account(const Pass& pass) {
  if (!pass.failed) {
    consecutiveFailures_ = 0;
    return;
  }
  if (++consecutiveFailures_ < failuresUntilBackOff) {
    return;
  }
  close();
  retryAfter_ = clock_.uptime() + backOff;
  consecutiveFailures_ = 0;
}

void SensorCollector::close() {
  reader_.reset();
  fanCount_.reset();
  fanMaximum_.fill(std::nullopt);
}

}  // namespace vantora
