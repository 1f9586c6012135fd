// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/sensor_inventory.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

/// Which file it is, whatever path led to it.
using FileId = std::pair<dev_t, ino_t>;

std::optional<FileId> idOf(int file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 ? std::optional(FileId{status.st_dev, status.st_ino})
                                     : std::nullopt;
}

std::optional<FileId> idOf(int directory, const std::string& name) {
  struct stat status {};
  return ::fstatat(directory, name.c_str(), &status, 0) == 0
             ? std::optional(FileId{status.st_dev, status.st_ino})
             : std::nullopt;
}

/// What a reading at this moment is made of.
class Chosen {
 public:
  Chosen(const LinuxSensorSource::Roots& roots, ChipLookup& chips) {
    take(findCpuSensors(chips), MetricID::cpuTemperature);
    take(findBatterySensors(roots.powerSupply, chips), MetricID::batteryTemperature);
    const std::vector<LinuxFans::Fan> fans = LinuxFans::find(chips);
    constexpr MetricID rpm[] = {MetricID::fan1RPM, MetricID::fan2RPM};
    constexpr MetricID percent[] = {MetricID::fan1Percent, MetricID::fan2Percent};
    for (std::size_t index = 0; index < fans.size() && index < std::size(rpm); ++index) {
      fanChips_.insert(fans[index].chip);
      if (const auto id = idOf(fans[index].file.get())) {
        files_.emplace_back(*id, rpm[index]);
        if (fans[index].maximum) {
          files_.emplace_back(*id, percent[index]);
        }
      }
    }
  }

  [[nodiscard]] MetricSet metricsOf(const std::optional<FileId>& file) const {
    MetricSet metrics;
    for (const auto& [known, metric] : files_) {
      if (file == known) {
        metrics.insert(metric);
      }
    }
    return metrics;
  }
  [[nodiscard]] bool hasFansOf(const std::string& chip) const { return fanChips_.contains(chip); }
  [[nodiscard]] bool has(MetricID metric) const {
    return std::any_of(files_.begin(), files_.end(),
                       [metric](const auto& file) { return file.second == metric; });
  }

 private:
  void take(const FoundSensors& found, MetricID metric) {
    for (const UniqueFd& file : found.files) {
      if (const auto id = idOf(file.get())) {
        files_.emplace_back(*id, metric);
      }
    }
  }

  std::vector<std::pair<FileId, MetricID>> files_;
  std::set<std::string, std::less<>> fanChips_;
};

const char* whyNoTemperature(const Hwmon::Chip& chip, const Chosen& chosen) {
  switch (Hwmon::cpuRank(chip.name)) {
    case Hwmon::CpuRank::none:
      return "não medem a CPU nem a bateria";
    case Hwmon::CpuRank::own:
      return "outro valor do mesmo chip é a temperatura";
    case Hwmon::CpuRank::byLabel:
    case Hwmon::CpuRank::wholeSoC:
      break;
  }
  return chosen.has(MetricID::cpuTemperature) ? "outro sensor mede melhor a CPU"
                                              : "o rótulo não diz que medem a CPU";
}

const char* whyNoFan(const Hwmon::Chip& chip, const Chosen& chosen) {
  if (Hwmon::fanRank(chip.name) < 0) {
    return "são da placa de vídeo";
  }
  return chosen.hasFansOf(chip.name) ? "só duas ventoinhas são lidas"
                                     : "as ventoinhas são lidas de outro chip";
}

void addChip(const Hwmon::Chip& chip, const Chosen& chosen, std::vector<DeviceReport>& reports) {
  const UniqueFd directory = Sysfs::openDirectory(chip.directory);
  if (!directory) {
    return;
  }
  const std::string driver = Sysfs::driverName(directory.get());
  for (const std::string_view kind : {"temp", "fan"}) {
    for (Hwmon::Channel& channel : Hwmon::channels(chip, kind)) {
      DeviceReport& report = reports.emplace_back();
      report.name = chip.name;
      report.driver = driver;
      report.feeds = chosen.metricsOf(idOf(directory.get(), channel.prefix + "_input"));
      report.channel = std::move(channel.prefix);
      report.label = std::move(channel.label);
      if (report.feeds.empty()) {
        report.why = kind == "fan" ? whyNoFan(chip, chosen) : whyNoTemperature(chip, chosen);
      }
    }
  }
}

}  // namespace

std::vector<DeviceReport> sensorInventory(const LinuxSensorSource::Roots& roots) {
  ChipLookup chips(roots.hwmon);
  const Chosen chosen(roots, chips);
  std::vector<DeviceReport> reports;
  for (const Hwmon::Chip& chip : chips.chips()) {
    addChip(chip, chosen, reports);
  }
  const UniqueFd supplies = Sysfs::openDirectory(roots.powerSupply);
  for (const std::string& name : Sysfs::namesIn(roots.powerSupply)) {
    const UniqueFd directory = Sysfs::openDirectory(supplies.get(), name.c_str());
    const MetricSet feeds =
        directory ? chosen.metricsOf(idOf(directory.get(), "temp")) : MetricSet();
    if (!feeds.empty()) {
      DeviceReport& report = reports.emplace_back();
      report.name = name;
      report.driver = Sysfs::driverName(directory.get());
      report.channel = "temp";
      report.feeds = feeds;
    }
  }
  return reports;
}

}  // namespace vantora
