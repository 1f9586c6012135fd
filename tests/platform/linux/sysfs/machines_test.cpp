// SPDX-License-Identifier: MIT
//
// Every machine of this folder, replayed: what battery, adapter and sensors read on it against
// what its file expects.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

constexpr MetricSet sensorMetrics{MetricID::batteryTemperature, MetricID::cpuTemperature,
                                  MetricID::fan1RPM, MetricID::fan2RPM};

std::filesystem::path folder() {
  return std::filesystem::path(VANTORA_TEST_DATA) / "platform/linux/sysfs";
}

std::vector<std::string> machines() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder())) {
    if (entry.path().extension() == ".txt" && entry.path().filename() != "CMakeLists.txt") {
      names.push_back(entry.path().stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// What follows "# KEY: " in the file of the machine; empty when there is no such line.
std::string remark(const std::string& machine, const std::string& key) {
  std::ifstream file(folder() / (machine + ".txt"));
  const std::string start = "# " + key + ": ";
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(start)) {
      return line.substr(start.size());
    }
  }
  return {};
}

/// Rounded to that many decimals, without zeros at the end; "-" for no reading.
std::string number(const MetricSample& sample, int decimals) {
  if (sample.quality != Quality::valid || !sample.value) {
    return "-";
  }
  const double scale = std::pow(10, decimals);
  std::string text = std::to_string(std::round(*sample.value * scale) / scale);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) {
    text.pop_back();
  }
  return text;
}

std::string number(const SampleTable& samples, MetricID metric, int decimals) {
  const MetricSample* sample = samples.find(metric);
  return sample != nullptr ? number(*sample, decimals) : "no sample";
}

/// All readings of the machine in one line.
std::string readingsOf(const std::string& machine) {
  const test::VirtualTime time;
  const test::SysfsTree tree(machine);
  const BatteryReadings battery = LinuxBatterySource(time, tree.powerSupply()).read();
  LinuxSensorSource source(time, {tree.hwmon(), tree.powerSupply()});
  const SampleTable sensors = source.sample(sensorMetrics);
  const char* state = battery.charging ? "charging" : battery.onAC ? "AC" : "none";
  return "battery=" + number(battery.percentage, 1) + " minutes=" + number(battery.duration, 0) +
         " state=" + state + " watts=" + number(battery.adapterWatts, 1) +
         " cpu=" + number(sensors, MetricID::cpuTemperature, 1) +
         " cell=" + number(sensors, MetricID::batteryTemperature, 1) +
         " fan1=" + number(sensors, MetricID::fan1RPM, 0) +
         " fan2=" + number(sensors, MetricID::fan2RPM, 0);
}

class Machine : public testing::TestWithParam<std::string> {};

TEST_P(Machine, ReadsAsItsFileExpects) {
  EXPECT_EQ(readingsOf(GetParam()), remark(GetParam(), "expect"));
  EXPECT_NE(remark(GetParam(), "source"), "") << "the file says nowhere where its facts are from";
}

INSTANTIATE_TEST_SUITE_P(Replayed, Machine, testing::ValuesIn(machines()),
                         [](const testing::TestParamInfo<std::string>& machine) {
                           std::string name = machine.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

TEST(Machines, AreManyEnoughToStandForWhatPeopleHave) {
  EXPECT_GE(machines().size(), 40U);
}

}  // namespace
}  // namespace vantora
