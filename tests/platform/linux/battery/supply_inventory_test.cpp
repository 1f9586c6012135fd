// SPDX-License-Identifier: MIT
#include "platform/linux/battery/supply_inventory.hpp"

#include <gtest/gtest.h>

#include <map>

#include "support/sysfs_tree.hpp"

namespace vantora {
namespace {

using enum MetricID;

std::map<std::string, DeviceReport> inventoryOf(const test::SysfsTree& tree) {
  std::map<std::string, DeviceReport> reports;
  for (DeviceReport& report : supplyInventory(tree.powerSupply())) {
    const std::string name = report.name;
    reports[name] = std::move(report);
  }
  return reports;
}

TEST(SupplyInventory, TellsWhatEachSupplyFeeds) {
  const test::SysfsTree tree("thinkpad-t440s");
  auto reports = inventoryOf(tree);
  EXPECT_EQ(reports["BAT1"].feeds, (MetricSet{batteryPercent, batteryTime}));
  EXPECT_EQ(reports["BAT1"].state, "bateria, descarregando");
  EXPECT_EQ(reports["AC"].why, "não está conectado");
}

TEST(SupplyInventory, TellsWhyOneFeedsNothing) {
  test::SysfsTree tree;
  tree.write("power_supply/BAT0/type", "Battery\n");
  tree.write("power_supply/BAT1/type", "Battery\n");
  tree.write("power_supply/BAT1/present", "0\n");
  tree.write("power_supply/AC/type", "Mains\n");
  tree.write("power_supply/AC/online", "1\n");
  tree.write("power_supply/ups/type", "UPS\n");
  auto reports = inventoryOf(tree);
  EXPECT_EQ(reports["BAT0"].why, "não informa a sua carga");
  EXPECT_EQ(reports["BAT1"].why, "não está na máquina");
  EXPECT_EQ(reports["AC"].why, "não informa a potência");
  EXPECT_EQ(reports["ups"].why, "não é bateria nem adaptador");
}

TEST(SupplyInventory, DoesNotNameTheBatteriesOfOtherDevices) {
  test::SysfsTree tree;
  tree.write("power_supply/hid-0018-battery/type", "Battery\n");
  tree.write("power_supply/hid-0018-battery/scope", "Device\n");
  const auto reports = supplyInventory(tree.powerSupply());
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].name, "de um periférico");
  EXPECT_EQ(reports[0].why, "não é desta máquina");
}

TEST(SupplyInventory, IsEmptyWhereThereIsNoSuchFolder) {
  EXPECT_TRUE(supplyInventory("/no/such/folder").empty());
}

}  // namespace
}  // namespace vantora
