// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/battery/supply_inventory.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "platform/linux/sensors/sensor_inventory.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace {

using namespace vantora;

constexpr MetricSet sensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};

// The attributes that the input fills, in this order; the rest of the tree is fixed.
constexpr std::array<std::string_view, 34> attributes{
    "power_supply/BAT0/status",
    "power_supply/BAT0/energy_now",
    "power_supply/BAT0/energy_full",
    "power_supply/BAT0/charge_now",
    "power_supply/BAT0/charge_full",
    "power_supply/BAT0/capacity",
    "power_supply/BAT0/power_now",
    "power_supply/BAT0/current_now",
    "power_supply/BAT0/voltage_now",
    "power_supply/BAT0/voltage_min_design",
    "power_supply/BAT0/temp",
    "power_supply/BAT0/time_to_empty_now",
    "power_supply/BAT0/present",
    "power_supply/BAT0/time_to_full_now",
    "power_supply/BAT0/scope",
    "power_supply/BAT1/type",
    "power_supply/BAT1/status",
    "power_supply/BAT1/charge_now",
    "power_supply/BAT1/charge_full",
    "power_supply/BAT1/current_now",
    "power_supply/BAT1/voltage_now",
    "power_supply/AC/type",
    "power_supply/AC/online",
    "power_supply/AC/voltage_max",
    "power_supply/AC/current_max",
    "power_supply/AC/input_power_limit",
    "hwmon/hwmon0/name",
    "hwmon/hwmon0/temp1_input",
    "hwmon/hwmon0/temp1_label",
    "hwmon/hwmon0/fan1_input",
    "hwmon/hwmon0/fan1_max",
    "hwmon/hwmon0/temp2_input",
    "power_supply/BAT0/charge_control_end_threshold",
    "power_supply/AC/voltage_max_design"};

class Tree {
 public:
  Tree() {
    const auto base = std::filesystem::exists("/dev/shm") ? std::filesystem::path("/dev/shm")
                                                          : std::filesystem::temp_directory_path();
    std::string pattern = (base / "sysfs-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    for (const char* folder : {"BAT0", "BAT1", "AC"}) {
      std::filesystem::create_directories(root_ / "power_supply" / folder);
    }
    std::filesystem::create_directories(root_ / "hwmon/hwmon0");
    std::ofstream(root_ / "power_supply/BAT0/type") << "Battery\n";
  }
  ~Tree() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  // '|' ends an attribute; one that is "!" or beyond the end of the input is not there.
  void fill(std::string_view input) {
    for (const std::string_view attribute : attributes) {
      const std::filesystem::path path = root_ / attribute;
      const std::size_t end = std::min(input.find('|'), input.size());
      const std::string_view bytes = input.substr(0, end);
      if (input.empty() || bytes == "!") {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
      } else {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
      }
      input.remove_prefix(std::min(end + 1, input.size()));
    }
  }

  [[nodiscard]] std::string path(const char* below) const { return root_ / below; }

 private:
  std::filesystem::path root_;
};

class FixedClock final : public Clock {
 public:
  [[nodiscard]] Seconds uptime() const override { return Seconds{1000}; }
  [[nodiscard]] WallTime now() const override { return wallTimeFromUnix(1'700'000'000); }
};

void demandThat(bool holds) {
  if (!holds) {
    std::abort();
  }
}

void check(const MetricSample& sample, double least, double most) {
  demandThat(!sample.source.empty());
  demandThat(sample.value.has_value() == (sample.quality == Quality::valid));
  demandThat(!sample.value || (*sample.value >= least && *sample.value <= most));
}

}  // namespace

// Whatever drivers write, every sample is a value in its range or says why there is none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Tree tree;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  (void)Sysfs::parseNumber(input);
  tree.fill(input);
  const FixedClock clock;
  const BatteryReadings readings = LinuxBatterySource(clock, tree.path("power_supply")).read();
  check(readings.percentage, 0, 100);
  check(readings.duration, 0, 9999.999999);
  check(readings.adapterWatts, 0, 1e26);

  LinuxSensorSource source(clock, {tree.path("hwmon"), tree.path("power_supply")});
  for (int pass = 0; pass < 2; ++pass) {
    const SampleTable samples = source.sample(sensors);
    demandThat(samples.metrics() == sensors);
    check(*samples.find(MetricID::cpuTemperature), -100, 200);
    check(*samples.find(MetricID::batteryTemperature), -100, 200);
    check(*samples.find(MetricID::fan1RPM), 0, 65'534);
    check(*samples.find(MetricID::fan1Percent), 0, 100);
    check(*samples.find(MetricID::fan2RPM), 0, 65'534);
  }
  for (const auto& reports : {sensorInventory({tree.path("hwmon"), tree.path("power_supply")}),
                              supplyInventory(tree.path("power_supply"))}) {
    for (const DeviceReport& report : reports) {
      demandThat(report.why.empty() == !report.feeds.empty());
    }
  }
  return 0;
}
