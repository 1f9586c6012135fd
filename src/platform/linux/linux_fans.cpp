// SPDX-License-Identifier: MIT
#include "platform/linux/linux_fans.hpp"

#include <algorithm>
#include <cerrno>

#include "model/metric_math.hpp"
#include "platform/linux/sysfs.hpp"

namespace vantora {
namespace {

// The embedded controller of ThinkPads tells 65535 while it has no reading; no fan turns so
// fast.
constexpr std::int64_t noSpeed = 65'535;

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
  bool failed = false;
  bool deviceGone = false;
};

void LinuxFans::prepare(SensorPass& pass) {
  if (upkeep_.mayOpen(pass.uptime)) {
    open(pass);
  }
}

void LinuxFans::sample(MetricSet demand, SensorPass& pass, SampleTable& samples) {
  Reading reading = read(demand);
  if (reading.deviceGone) {
    pass.chips.forget();
    open(pass);
    reading = read(demand);
  }
  for (const MetricID metric : demand) {
    if (metrics.contains(metric)) {
      samples.set(metric, sampleOf(metric, reading, pass.now));
    }
  }
  if (!reading.failed) {
    upkeep_.succeeded();
  } else if (upkeep_.failed(pass.uptime,
                            "Linux hwmon · ventoinhas sem resposta; nova tentativa em até 60 s")) {
    fans_.clear();
  }
}

void LinuxFans::reset() {
  fans_.clear();
  upkeep_ = {};
}

void LinuxFans::open(SensorPass& pass) {
  fans_.clear();
  std::vector<const Hwmon::Chip*> candidates;
  for (const Hwmon::Chip& chip : pass.chips.chips()) {
    if (Hwmon::fanRank(chip.name) >= 0) {
      candidates.push_back(&chip);
    }
  }
  // Stable, so that chips of one rank stay in the order of their names.
  std::stable_sort(candidates.begin(), candidates.end(), [](const auto* left, const auto* right) {
    return Hwmon::fanRank(left->name) < Hwmon::fanRank(right->name);
  });
  for (const Hwmon::Chip* chip : candidates) {
    if (!fans_.empty() && fans_.front().chip != chip->name) {
      break;
    }
    const UniqueFd directory = Sysfs::openDirectory(chip->directory);
    for (Hwmon::Channel& channel : Hwmon::channels(*chip, "fan")) {
      auto file = Sysfs::open(directory.get(), (channel.prefix + "_input").c_str());
      if (!file || fans_.size() == fansRead) {
        continue;
      }
      const Sysfs::Number maximum =
          Sysfs::readNumber(directory.get(), (channel.prefix + "_max").c_str());
      fans_.push_back(
          {std::move(file),
           maximum.error == 0 ? std::optional(static_cast<double>(maximum.value)) : std::nullopt,
           chip->name, std::move(channel.prefix)});
    }
  }
  if (fans_.empty()) {
    upkeep_.absent(pass.uptime, {});
  } else {
    upkeep_.opened();
  }
}

LinuxFans::Reading LinuxFans::read(MetricSet demand) const {
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
    const Sysfs::Number number = Sysfs::readNumber(fans_[index].file.get());
    reading.deviceGone = reading.deviceGone || number.error == ENODEV;
    if (number.error == 0 && number.value >= 0 && number.value < noSpeed) {
      reading.rpm[index] = static_cast<double>(number.value);
    } else {
      reading.failed = true;
    }
  }
  return reading;
}

MetricSample LinuxFans::sampleOf(MetricID metric, const Reading& reading, WallTime now) const {
  const std::size_t index = fanIndex(metric);
  if (!upkeep_.isOpen() && !upkeep_.reason().empty()) {
    return MetricSample::unavailable(upkeep_.reason());
  }
  if (index >= fans_.size()) {
    return MetricSample::unavailable("Ventoinha " + fanNumber(metric) +
                                     " não existe nesta máquina");
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
