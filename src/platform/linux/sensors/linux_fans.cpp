// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_fans.hpp"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include "model/metric_math.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

// What the embedded controller of ThinkPads answers while it has no reading; no fan turns so
// fast.
constexpr std::int64_t noSpeed = 65'535;

std::optional<double> readSpeed(const UniqueFd& file, int& error) {
  const Sysfs::Number number = Sysfs::readNumber(file.get());
  error = number.error;
  if (number.error != 0 || number.value < 0 || number.value >= noSpeed) {
    return std::nullopt;
  }
  return static_cast<double>(number.value);
}

constexpr bool isPercent(MetricID metric) {
  return metric == MetricID::fan1Percent || metric == MetricID::fan2Percent;
}

constexpr std::size_t fanIndex(MetricID metric) {
  return metric == MetricID::fan1Percent || metric == MetricID::fan1RPM ? 0 : 1;
}

std::string fanNumber(MetricID metric) {
  return std::to_string(fanIndex(metric) + 1);
}

}  // namespace

struct LinuxFans::Reading {
  std::array<std::optional<double>, fansRead> rpm;
  std::array<bool, fansRead> failed{};
  std::array<bool, fansRead> resting{};
  bool deviceGone = false;
};

void LinuxFans::prepare(SensorPass& pass) {
  if (upkeep_.mayOpen(pass.uptime)) {
    open(pass);
  }
}

void LinuxFans::sample(MetricSet demand, SensorPass& pass, SampleTable& samples) {
  Reading reading = read(demand, pass.uptime);
  if (reading.deviceGone) {
    pass.chips.forget();
    open(pass);
    reading = read(demand, pass.uptime);
  }
  for (const MetricID metric : demand) {
    if (metrics.contains(metric)) {
      samples.set(metric, sampleOf(metric, reading, pass.now));
    }
  }
  countFailures(reading, pass.uptime);
}

void LinuxFans::countFailures(const Reading& reading, Seconds uptime) {
  constexpr int failuresUntilRest = 3;
  for (std::size_t index = 0; index < fansRead; ++index) {
    Rest& rest = rests_[index];
    if (reading.rpm[index]) {
      rest = {};
    } else if (reading.failed[index] && ++rest.failures == failuresUntilRest) {
      rest = {0, uptime + sensorBackOff};
    }
  }
}

void LinuxFans::reset() {
  fans_.clear();
  rests_ = {};
  upkeep_ = {};
}

void LinuxFans::open(SensorPass& pass) {
  fans_.clear();  // before others are opened
  fans_ = find(pass.chips);
  if (fans_.empty()) {
    upkeep_.absent(pass.uptime, {});
  } else {
    upkeep_.opened();
  }
}

std::vector<LinuxFans::Fan> LinuxFans::find(ChipLookup& chips) {
  std::vector<Fan> fans;
  std::vector<const Hwmon::Chip*> candidates;
  for (const Hwmon::Chip& chip : chips.chips()) {
    if (Hwmon::fanRank(chip.name) >= 0) {
      candidates.push_back(&chip);
    }
  }
  // Stable, so that chips of one rank stay in the order of their names.
  std::stable_sort(candidates.begin(), candidates.end(), [](const auto* left, const auto* right) {
    return Hwmon::fanRank(left->name) < Hwmon::fanRank(right->name);
  });
  const auto isTurning = [](const Fan& fan) { return fan.isTurning; };
  for (auto chip = candidates.begin(); chip != candidates.end();) {
    const std::string& kind = (*chip)->name;
    std::vector<Fan> found;
    for (; chip != candidates.end() && (*chip)->name == kind; ++chip) {
      std::vector<Fan> more = fansOf(**chip);
      std::move(more.begin(), more.end(), std::back_inserter(found));
    }
    const bool isAnyTurning = std::any_of(found.begin(), found.end(), isTurning);
    // Some boards' controllers announce a fan that is not there and reads 0 for ever.
    if (isAnyTurning || fans.empty()) {
      fans = std::move(found);
    }
    if (isAnyTurning) {
      break;
    }
  }
  if (fans.size() > fansRead) {
    std::stable_partition(fans.begin(), fans.end(), isTurning);
    fans.resize(fansRead);
  }
  return fans;
}

std::vector<LinuxFans::Fan> LinuxFans::fansOf(const Hwmon::Chip& chip) {
  std::vector<Fan> fans;
  const UniqueFd directory = Sysfs::openDirectory(chip.directory);
  for (Hwmon::Channel& channel : Hwmon::channels(chip, "fan")) {
    auto file = Sysfs::open(directory.get(), (channel.prefix + "_input").c_str());
    if (!file) {
      continue;
    }
    int error = 0;
    const bool isTurning = readSpeed(file, error).value_or(0) > 0;
    const auto maximum =
        Sysfs::readNumber(directory.get(), (channel.prefix + "_max").c_str()).ifRead();
    fans.push_back({std::move(file),
                    maximum ? std::optional(static_cast<double>(*maximum)) : std::nullopt,
                    chip.name, std::move(channel.prefix), isTurning});
  }
  return fans;
}

LinuxFans::Reading LinuxFans::read(MetricSet demand, Seconds uptime) const {
  Reading reading;
  std::array<bool, fansRead> wanted{};
  for (const MetricID metric : demand) {
    if (metrics.contains(metric)) {
      wanted[fanIndex(metric)] = true;
    }
  }
  for (std::size_t index = 0; index < fans_.size(); ++index) {
    if (!wanted[index]) {
      continue;
    }
    if (rests_[index].until && uptime < *rests_[index].until) {
      reading.resting[index] = true;
      continue;
    }
    int error = 0;
    reading.rpm[index] = readSpeed(fans_[index].file, error);
    reading.failed[index] = !reading.rpm[index];
    reading.deviceGone = reading.deviceGone || error == ENODEV;
  }
  return reading;
}

MetricSample LinuxFans::sampleOf(MetricID metric, const Reading& reading, WallTime now) const {
  const std::size_t index = fanIndex(metric);
  if (index >= fans_.size()) {
    return MetricSample::unavailable("Ventoinha " + fanNumber(metric) +
                                     " não existe nesta máquina");
  }
  if (reading.resting[index]) {
    return MetricSample::unavailable("Linux hwmon · ventoinha " + fanNumber(metric) +
                                     " sem resposta; nova tentativa em até 60 s");
  }
  const Fan& fan = fans_[index];
  const auto rpm = reading.rpm[index];
  if (!rpm) {
    return MetricSample::unavailable("Linux hwmon · RPM da ventoinha " + fanNumber(metric) +
                                     " indisponível");
  }
  const std::string chip = "Linux hwmon · " + fan.chip + " · ";
  if (!isPercent(metric)) {
    return MetricSample::valid(*rpm, chip + fan.prefix + "_input · RPM", now);
  }
  // No failure: most chips tell no maximum, and real fans turn somewhat faster than theirs.
  if (!fan.maximum) {
    return MetricSample::unavailable(chip + "máximo da ventoinha " + fanNumber(metric) +
                                     " não informado");
  }
  const auto percent = MetricMath::fanPercent(*rpm, *fan.maximum);
  if (!percent) {
    return MetricSample::unavailable(chip + "máximo da ventoinha " + fanNumber(metric) +
                                     " inválido");
  }
  return MetricSample::valid(
      *percent, chip + "100 × " + fan.prefix + "_input/" + fan.prefix + "_max · % do RPM máximo",
      now);
}

}  // namespace vantora
