// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/hwmon.hpp"

#include <gtest/gtest.h>

#include "support/sysfs_tree.hpp"

namespace vantora {
namespace {

using Hwmon::CpuRank;

std::vector<std::string> prefixes(const std::vector<Hwmon::Channel>& channels) {
  std::vector<std::string> found;
  for (const Hwmon::Channel& channel : channels) {
    found.push_back(channel.prefix);
  }
  return found;
}

using Names = std::vector<std::string>;

TEST(HwmonChips, StandInTheOrderOfTheirDevicesWhateverTheirNumbers) {
  test::SysfsTree tree("server-with-ups");
  Names devices;
  for (const Hwmon::Chip& chip : Hwmon::chips(tree.hwmon())) {
    devices.push_back(chip.name + " " + chip.device);
  }
  EXPECT_EQ(devices, (Names{"coretemp ../../../coretemp.0", "coretemp ../../../coretemp.1",
                            "power_meter "}));
}

TEST(HwmonChips, AreNoneWhereTheKernelHasNoSuchFolder) {
  test::SysfsTree tree;
  EXPECT_TRUE(Hwmon::chips(tree.hwmon()).empty());
  EXPECT_TRUE(Hwmon::chips(tree.path("nowhere")).empty());
}

TEST(HwmonChips, WithoutANameAreLeftOut) {
  test::SysfsTree tree("raspberry-pi-4");
  tree.write("hwmon/hwmon0/name", "");
  tree.remove("hwmon/hwmon1/name");
  tree.write("hwmon/file", "coretemp\n");
  tree.putFolder("hwmon/hwmon7/name");
  tree.putFolder("hwmon/hwmon8");
  tree.putPipe("hwmon/hwmon8/name");
  EXPECT_TRUE(Hwmon::chips(tree.hwmon()).empty());
}

TEST(HwmonChips, HaveTheirChannelsInTheOrderOfTheirNumbers) {
  test::SysfsTree tree;
  for (const char* name :
       {"temp10_input", "temp2_input", "temp1_input", "temp1_max", "temp_input", "tempx_input",
        "temp3_inputs", "fan1_input", "temp-4_input", "temp99999999999_input"}) {
    tree.write(std::string("hwmon/hwmon0/") + name, "1\n");
  }
  tree.write("hwmon/hwmon0/temp2_label", "Core 0\n");
  const Hwmon::Chip chip{tree.path("hwmon/hwmon0"), "coretemp", ""};
  const auto channels = Hwmon::channels(chip, "temp");
  EXPECT_EQ(prefixes(channels), (Names{"temp1", "temp2", "temp10"}));
  EXPECT_EQ(channels.at(1).label, "Core 0");
  EXPECT_EQ(channels.at(0).label, "");
  EXPECT_TRUE(Hwmon::channels({tree.path("nowhere"), "coretemp", ""}, "temp").empty());
}

TEST(HwmonChips, AreTheCpusOwnByTheNameOfTheirDriver) {
  for (const char* name :
       {"coretemp", "k10temp", "zenpower", "k8temp", "via_cputemp", "cpu_thermal", "cpu0_thermal",
        "cpu0_0_top_thermal", "CPU_therm", "bigcore0_thermal", "littlecore_thermal"}) {
    EXPECT_EQ(Hwmon::cpuRank(name), CpuRank::own) << name;
  }
  for (const char* name : {"macsmc_hwmon", "scpi_sensors", "scmi_sensors", "atk0110"}) {
    EXPECT_EQ(Hwmon::cpuRank(name), CpuRank::byLabel) << name;
  }
  for (const char* name : {"soc_thermal", "imx_thermal_zone", "bcm2835_thermal", "apm_xgene"}) {
    EXPECT_EQ(Hwmon::cpuRank(name), CpuRank::wholeSoC) << name;
  }
  for (const char* name : {"acpitz", "nvme", "amdgpu", "gpu_thermal", "BAT0", "iwlwifi_1",
                           "thinkpad", "nct6798", "pch_cannonlake", ""}) {
    EXPECT_EQ(Hwmon::cpuRank(name), CpuRank::none) << name;
  }
}

TEST(HwmonChips, MeasureTheCpuWithEveryChannelOfItsOwnChip) {
  const std::vector<Hwmon::Channel> channels{{"temp1", "Package id 0"}, {"temp2", "Core 0"}};
  EXPECT_EQ(prefixes(Hwmon::cpuChannels("coretemp", channels)), (Names{"temp1", "temp2"}));
}

TEST(HwmonChips, LeaveOutTheControlTemperatureWhereTheDieReportsItsOwn) {
  const std::vector<Hwmon::Channel> both{{"temp1", "Tdie"}, {"temp2", "Tctl"}, {"temp3", "Tccd1"}};
  EXPECT_EQ(prefixes(Hwmon::cpuChannels("k10temp", both)), (Names{"temp1", "temp3"}));
  const std::vector<Hwmon::Channel> control{{"temp1", "Tctl"}, {"temp3", "Tccd1"}};
  EXPECT_EQ(prefixes(Hwmon::cpuChannels("k10temp", control)), (Names{"temp1", "temp3"}));
}

TEST(HwmonChips, WithManySensorsNameTheCpusByLabel) {
  const std::vector<Hwmon::Channel> apple{{"temp1", "NAND Flash Temperature"},
                                          {"temp2", "CPU Core 1 Temperature"},
                                          {"temp3", "Battery Hotspot Temperature"}};
  EXPECT_EQ(prefixes(Hwmon::cpuChannels("macsmc_hwmon", apple)), (Names{"temp2"}));
  const std::vector<Hwmon::Channel> juno{{"temp1", "pmic"},
                                         {"temp2", "soc"},
                                         {"temp3", "big"},
                                         {"temp4", "LITTLE"},
                                         {"temp5", "gpu0"}};
  EXPECT_EQ(prefixes(Hwmon::cpuChannels("scpi_sensors", juno)), (Names{"temp3", "temp4"}));
}

TEST(HwmonChips, OfApplesControllersMeasureTheBattery) {
  test::SysfsTree air("macbook-air-m2-asahi");
  EXPECT_EQ(prefixes(Hwmon::batteryChannels({air.path("hwmon/hwmon1"), "macsmc_hwmon", ""})),
            (Names{"temp2"}));
  test::SysfsTree pro("macbook-pro-2015");
  EXPECT_EQ(prefixes(Hwmon::batteryChannels({pro.path("hwmon/hwmon0"), "applesmc", ""})),
            (Names{"temp2"}));
  EXPECT_TRUE(Hwmon::batteryChannels({air.path("hwmon/hwmon1"), "asus", ""}).empty());
}

TEST(HwmonChips, AreAskedForFansFromTheMachinesControllerToTheAcpiTables) {
  EXPECT_LT(Hwmon::fanRank("thinkpad"), Hwmon::fanRank("nct6798"));
  EXPECT_LT(Hwmon::fanRank("pwmfan"), Hwmon::fanRank("it8688"));
  EXPECT_LT(Hwmon::fanRank("nct6798"), Hwmon::fanRank("corsaircpro"));
  EXPECT_EQ(Hwmon::fanRank("asusec"), Hwmon::fanRank("nct6798"));
  EXPECT_LT(Hwmon::fanRank("corsaircpro"), Hwmon::fanRank("acpi_fan"));
  for (const char* name : {"amdgpu", "radeon", "nouveau", "xe", "i915"}) {
    EXPECT_LT(Hwmon::fanRank(name), 0) << name;
  }
}

}  // namespace
}  // namespace vantora
