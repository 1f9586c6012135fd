// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

#include "platform/linux/battery/linux_battery_source.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

inline const MetricSample noBattery = MetricSample::unavailable("Bateria interna indisponível");
inline const MetricSample noEstimate = MetricSample::unavailable("Estimativa indisponível");
inline const MetricSample noAdapter = MetricSample::unavailable("Adaptador sem potência informada");
inline const MetricSample unreadable =
    MetricSample::unavailable("Linux power_supply · carga da bateria interna ilegível");

/// A tree of files to fill, and the machines that are kept.
class LinuxBatterySourceFixture : public testing::Test {
 protected:
  BatteryReadings read() { return LinuxBatterySource(time, tree.powerSupply()).read(); }
  BatteryReadings readMachine(const std::string& machine) {
    SysfsTree other(machine);
    return LinuxBatterySource(time, other.powerSupply()).read();
  }
  void add(const std::string& text) {
    std::istringstream lines(text);
    tree.add(lines);
  }
  // A battery that discharges: 40 of 50 Wh, 10 W.
  void addBattery(const std::string& name = "BAT0") {
    add("[power_supply/" + name +
        "]\ntype=Battery\nstatus=Discharging\npresent=1\nvoltage_min_design=10000000\n"
        "power_now=10000000\nenergy_full=50000000\nenergy_now=40000000\ncapacity=79\n");
  }
  void set(const std::string& attribute, const std::string& value) {
    tree.write("power_supply/BAT0/" + attribute, value + "\n");
  }
  void removeAttribute(const std::string& attribute) {
    tree.remove("power_supply/BAT0/" + attribute);
  }
  MetricSample valid(double value, std::string source) const {
    return MetricSample::valid(value, std::move(source), time.now());
  }

  VirtualTime time;
  SysfsTree tree;
};

}  // namespace vantora::test
