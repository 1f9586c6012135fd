// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/sensor_inventory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using enum MetricID;

std::vector<DeviceReport> inventoryOf(const test::SysfsTree& tree) {
  return sensorInventory({tree.hwmon(), tree.powerSupply()});
}

const DeviceReport& find(const std::vector<DeviceReport>& reports, const std::string& name,
                         const std::string& channel) {
  for (const DeviceReport& report : reports) {
    if (report.name == name && report.channel == channel) {
      return report;
    }
  }
  static const DeviceReport none;
  ADD_FAILURE() << name << ' ' << channel;
  return none;
}

TEST(SensorInventory, TellsOfEveryChannelWhatItFeedsOrWhyNothing) {
  const test::SysfsTree tree("thinkpad-t440s");
  const auto reports = inventoryOf(tree);
  EXPECT_EQ(find(reports, "coretemp", "temp1").feeds, MetricSet{cpuTemperature});
  EXPECT_EQ(find(reports, "acpitz", "temp1").why, "não medem a CPU nem a bateria");
  EXPECT_EQ(find(reports, "thinkpad", "fan1").feeds, MetricSet{fan1RPM}) << "it tells no maximum";
}

TEST(SensorInventory, SaysWhichFansAreLeftOut) {
  test::SysfsTree tree;
  for (const char* chip : {"hwmon0", "hwmon1", "hwmon2"}) {
    tree.write(std::string("hwmon/") + chip + "/fan1_input", "1200\n");
  }
  tree.write("hwmon/hwmon0/name", "thinkpad\n");
  tree.write("hwmon/hwmon0/fan2_input", "1300\n");
  tree.write("hwmon/hwmon0/fan2_max", "4000\n");
  tree.write("hwmon/hwmon0/fan3_input", "1400\n");
  tree.write("hwmon/hwmon1/name", "acpi_fan\n");
  tree.write("hwmon/hwmon2/name", "amdgpu\n");
  const auto reports = inventoryOf(tree);
  EXPECT_EQ(find(reports, "thinkpad", "fan1").feeds, MetricSet{fan1RPM});
  EXPECT_EQ(find(reports, "thinkpad", "fan2").feeds, (MetricSet{fan2RPM, fan2Percent}));
  EXPECT_EQ(find(reports, "thinkpad", "fan3").why, "só duas ventoinhas são lidas");
  EXPECT_EQ(find(reports, "acpi_fan", "fan1").why, "as ventoinhas são lidas de outro chip");
  EXPECT_EQ(find(reports, "amdgpu", "fan1").why, "são da placa de vídeo");
}

TEST(SensorInventory, NamesTheDriverAndAThermometerOfTheBattery) {
  test::SysfsTree tree;
  tree.write("hwmon/hwmon0/name", "k10temp\n");
  tree.write("hwmon/hwmon0/temp1_input", "50000\n");
  tree.write("hwmon/hwmon0/temp1_label", "Tctl\n");
  tree.write("hwmon/hwmon0/temp2_input", "40000\n");
  tree.write("hwmon/hwmon0/temp2_label", "Tdie\n");
  const std::filesystem::path device = std::filesystem::path(tree.hwmon()) / "hwmon0/device";
  std::filesystem::create_directories(device);
  std::filesystem::create_symlink("../../../bus/pci/drivers/k10temp", device / "driver");
  tree.write("power_supply/BAT0/type", "Battery\n");
  tree.write("power_supply/BAT0/temp", "310\n");
  const auto reports = inventoryOf(tree);
  EXPECT_EQ(find(reports, "k10temp", "temp1").why, "outro valor do mesmo chip é a temperatura");
  EXPECT_EQ(find(reports, "k10temp", "temp1").label, "Tctl");
  EXPECT_EQ(find(reports, "k10temp", "temp2").feeds, MetricSet{cpuTemperature});
  EXPECT_EQ(find(reports, "k10temp", "temp2").driver, "k10temp");
  EXPECT_EQ(find(reports, "BAT0", "temp").feeds, MetricSet{batteryTemperature});
}

TEST(SensorInventory, FeedsJustWhatAReadingHasOnEveryDescribedMachine) {
  constexpr MetricSet all{cpuTemperature, batteryTemperature, fan1RPM, fan2RPM};
  const test::VirtualTime time;
  int machines = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(VANTORA_TEST_DATA) +
                                                               "/platform/linux/sysfs")) {
    const std::string name = entry.path().stem();
    if (entry.path().extension() != ".txt" || name == "CMakeLists") {
      continue;
    }
    ++machines;
    const test::SysfsTree tree(name);
    LinuxSensorSource source(time, {tree.hwmon(), tree.powerSupply()});
    const SampleTable samples = source.sample(all);
    MetricSet fed;
    for (const DeviceReport& report : inventoryOf(tree)) {
      EXPECT_EQ(report.why.empty(), !report.feeds.empty()) << name << ' ' << report.name;
      for (const MetricID metric : report.feeds) {
        fed.insert(metric);
      }
    }
    for (const MetricID metric : all) {
      if (samples.find(metric)->quality == Quality::valid) {
        EXPECT_TRUE(fed.contains(metric)) << name << ' ' << id(metric);
      }
    }
  }
  EXPECT_GE(machines, 40);
}

}  // namespace
}  // namespace vantora
