// SPDX-License-Identifier: MIT
#include "app/linux/first_configuration.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "support/sysfs_tree.hpp"

namespace vantora {
namespace {

using enum MetricID;

MetricSet absentOn(const test::SysfsTree& tree) {
  return absentMetrics({.hwmon = tree.hwmon(), .powerSupply = tree.powerSupply()});
}

// Of the default modules: battery, network, CPU.
std::vector<bool> activeModules(MetricSet absent) {
  std::vector<bool> active;
  for (const ModuleConfiguration& module : firstConfiguration(absent).modules) {
    active.push_back(module.enabled);
  }
  return active;
}

TEST(FirstConfiguration, IsTheDefaultOnALaptop) {
  const test::SysfsTree tree("thinkpad-t440s");
  EXPECT_TRUE(absentOn(tree).empty());
  EXPECT_EQ(activeModules(absentOn(tree)), (std::vector{true, true, true}));
}

TEST(FirstConfiguration, HasNoActiveBatteryOnADesktopComputer) {
  const test::SysfsTree tree("desktop-ryzen-5900x");
  EXPECT_EQ(absentOn(tree), (MetricSet{batteryPercent, batteryTime}));
  EXPECT_EQ(activeModules(absentOn(tree)), (std::vector{false, true, true}));
}

TEST(FirstConfiguration, TakesNoBatteryOfAMouseForTheMachines) {
  test::SysfsTree tree;
  std::istringstream lines("[power_supply/mouse]\ntype=Battery\nscope=Device\ncapacity=50\n");
  tree.add(lines);
  EXPECT_TRUE(absentOn(tree).contains(batteryPercent));
}

TEST(FirstConfiguration, KeepsABatteryThatIsTakenOutOrCannotBeRead) {
  for (const char* attributes : {"type=Battery\npresent=0\n", "type=Battery\n"}) {
    test::SysfsTree tree;
    std::istringstream lines(std::string("[power_supply/BAT0]\n") + attributes);
    tree.add(lines);
    EXPECT_FALSE(absentOn(tree).contains(batteryPercent)) << attributes;
  }
}

TEST(FirstConfiguration, KeepsTheCPUsModuleForItsUsageWhereNoChipTellsATemperature) {
  const test::SysfsTree tree;
  EXPECT_EQ(absentOn(tree),
            (MetricSet{batteryPercent, batteryTime, batteryTemperature, cpuTemperature, fan1Percent,
                       fan2Percent, fan1RPM, fan2RPM}));
  EXPECT_EQ(activeModules(absentOn(tree)), (std::vector{false, true, true}));
}

TEST(FirstConfiguration, WorksWhereTheKernelHasNoneOfTheFolders) {
  EXPECT_EQ(absentMetrics({.hwmon = "/nowhere", .powerSupply = "/nowhere"}).size(), 8U);
}

TEST(FirstConfiguration, DiffersFromTheDefaultInNothingElse) {
  AppConfiguration first = firstConfiguration({batteryPercent, batteryTime});
  AppConfiguration usual;
  ASSERT_EQ(first.modules.size(), usual.modules.size());
  for (std::size_t index = 0; index < usual.modules.size(); ++index) {
    first.modules[index].id = usual.modules[index].id;
    first.modules[index].enabled = true;
  }
  EXPECT_EQ(first, usual);
}

}  // namespace
}  // namespace vantora
