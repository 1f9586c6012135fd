// SPDX-License-Identifier: MIT
#include "platform/linux/battery/linux_battery_source.hpp"

#include <gtest/gtest.h>

#include <string>

#include "platform/linux/battery/linux_battery_source_fixture.hpp"

namespace vantora {
namespace {

using test::noAdapter;
using test::noEstimate;
using LinuxBatterySource = test::LinuxBatterySourceFixture;

TEST_F(LinuxBatterySource, IsOnTheAdapterWhenAnyAdapterIsOnline) {
  add("[power_supply/AC]\ntype=Mains\nonline=0\n");
  EXPECT_FALSE(read().onAC);
  add("[power_supply/usb]\ntype=USB\nonline=1\n");
  EXPECT_TRUE(read().onAC);
  tree.write("power_supply/usb/online", "2\n");  // programmable supply
  EXPECT_TRUE(read().onAC);
  for (const char* online : {"0\n", "", "-1\n", "yes\n"}) {
    tree.write("power_supply/usb/online", online);
    EXPECT_FALSE(read().onAC) << online;
  }
}

TEST_F(LinuxBatterySource, KnowsTheKindsOfAdapter) {
  for (const char* type : {"Mains", "USB", "USB_PD", "USB_DCP", "Wireless"}) {
    add(std::string("[power_supply/AC]\nonline=1\ntype=") + type + "\n");
    EXPECT_TRUE(read().onAC) << type;
  }
  for (const char* type : {"UPS", "Unknown", "", "mains"}) {
    add(std::string("[power_supply/AC]\nonline=1\ntype=") + type + "\n");
    EXPECT_FALSE(read().onAC) << type;
  }
}

TEST_F(LinuxBatterySource, AsksTheBatteryWhereNoAdapterShowsItself) {
  addBattery();
  EXPECT_FALSE(read().onAC);
  for (const char* status : {"Charging", "Full", "Not charging"}) {
    set("status", status);
    EXPECT_TRUE(read().onAC) << status;
  }
  set("status", "Unknown");
  EXPECT_FALSE(read().onAC);
}

TEST_F(LinuxBatterySource, IsOnTheAdapterWhereTheBatteryIsFullThoughEveryAdapterIsOffline) {
  addBattery();
  add("[power_supply/AC]\ntype=Mains\nonline=0\n");
  EXPECT_FALSE(read().onAC);
  for (const char* status : {"Full", "Charging"}) {
    set("status", status);
    EXPECT_TRUE(read().onAC) << status;
  }
  set("status", "Full");
  EXPECT_EQ(read().duration, noEstimate);
  for (const char* status : {"Not charging", "Unknown"}) {
    set("status", status);
    EXPECT_FALSE(read().onAC) << status;
  }
  // Of two batteries a full one waits while the other serves.
  set("status", "Full");
  addBattery("BAT1");
  EXPECT_FALSE(read().onAC);
}

TEST_F(LinuxBatterySource, RatesAnAdapterByItsDesignVoltageWhereThereIsNoOther) {
  add("[power_supply/CROS_USBPD_CHARGER0]\ntype=USB\nonline=1\ncurrent_max=3000000\n"
      "voltage_max_design=20000000\n");
  EXPECT_EQ(read().adapterWatts,
            valid(60, "Linux power_supply · potência máxima informada do adaptador"));
  tree.write("power_supply/CROS_USBPD_CHARGER0/voltage_max", "0\n");
  EXPECT_EQ(read().adapterWatts.value, 60);
  tree.write("power_supply/CROS_USBPD_CHARGER0/voltage_max", "15000000\n");
  EXPECT_EQ(read().adapterWatts.value, 45);
}

TEST_F(LinuxBatterySource, RatesTheStrongestAdapterThatIsOnline) {
  add("[power_supply/a]\ntype=USB\nonline=1\nvoltage_max=9000000\ncurrent_max=3000000\n"
      "[power_supply/b]\ntype=USB\nonline=1\nvoltage_max=20000000\ncurrent_max=5000000\n"
      "[power_supply/c]\ntype=USB\nonline=0\nvoltage_max=48000000\ncurrent_max=5000000\n"
      "[power_supply/d]\ntype=USB\nscope=Device\nonline=1\nvoltage_max=48000000\n"
      "current_max=5000000\n");
  EXPECT_EQ(read().adapterWatts.value, 100);
}

TEST_F(LinuxBatterySource, NamesAnInputLimitWhatItIs) {
  add("[power_supply/macsmc-ac]\ntype=Mains\nonline=1\ninput_power_limit=30000000\n");
  EXPECT_EQ(read().adapterWatts,
            valid(30, "Linux power_supply · limite de entrada em vigor para o adaptador"));
  add("[power_supply/usb]\ntype=USB\nonline=1\nvoltage_max=20000000\ncurrent_max=1500000\n"
      "input_power_limit=15000000\n");
  EXPECT_EQ(read().adapterWatts.source,
            "Linux power_supply · potência máxima informada do adaptador");
}

TEST_F(LinuxBatterySource, RatesNoAdapterByImpossibleNumbers) {
  for (const char* numbers :
       {"voltage_max=0\ncurrent_max=3000000\n", "voltage_max=20000000\ncurrent_max=-1\n",
        "voltage_max=20000000\ncurrent_max=abc\n", "voltage_max=20000000\n",
        "input_power_limit=0\n", "input_power_limit=-1\n"}) {
    tree.remove("power_supply/usb");
    add(std::string("[power_supply/usb]\ntype=USB\nonline=1\n") + numbers);
    EXPECT_EQ(read().adapterWatts, noAdapter) << numbers;
  }
}

}  // namespace
}  // namespace vantora
