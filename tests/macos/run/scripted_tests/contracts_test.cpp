// SPDX-License-Identifier: MIT
//
// The contracts of the ports, kept by the adapters of macOS.
#include "contract/login_item_contract.hpp"
#include "contract/network_source_contract.hpp"
#include "contract/power_sources_contract.hpp"
#include "contract/tick_counters_contract.hpp"
#include "contract/user_defaults_contract.hpp"
#include "machine/machine.hpp"
#include "platform/macos/readings/apple_smc.hpp"
#include "platform/macos/readings/io_power_sources.hpp"
#include "platform/macos/readings/mach_tick_counters.hpp"
#include "platform/macos/readings/sysctl_network_source.hpp"
#include "platform/macos/settings/app_service_login_item.hpp"
#include "platform/macos/settings/cf_user_defaults.hpp"
#include "sampling/apple/sensor_collector.hpp"
#include "sampling/battery_collector.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {
namespace {

using standin::Machine;
using standin::withMachine;

struct Scripted {
  Scripted() { standin::resetMachine(); }
};

struct Mach : Scripted {
  MachTickCounters counters;
  void letTimePass() {}  // it passes with each reading
};
using Counters = testing::Types<Mach>;
INSTANTIATE_TYPED_TEST_SUITE_P(MacOS, TickCountersContract, Counters);

struct Sysctl : Scripted {
  SysctlNetworkSource source;
};
using Networks = testing::Types<Sysctl>;
INSTANTIATE_TYPED_TEST_SUITE_P(MacOS, NetworkSourceContract, Networks);

struct AppService : Scripted {
  AppServiceLoginItem item;
  void refuse() {
    withMachine([](Machine& machine) { machine.loginAnswer = standin::LoginAnswer::refuses; });
  }
};
using LoginItems = testing::Types<AppService>;
INSTANTIATE_TYPED_TEST_SUITE_P(MacOS, LoginItemContract, LoginItems);

struct Preferences : Scripted {
  CFUserDefaults defaults;
  void refuse() {
    withMachine([](Machine& machine) { machine.arePreferencesRefused = true; });
  }
};
using Defaults = testing::Types<Preferences>;
INSTANTIATE_TYPED_TEST_SUITE_P(MacOS, UserDefaultsContract, Defaults);

struct Controlled : Scripted {
  VirtualTime time;
  SensorCollector collector{&openAppleSMC, time};
};
struct Powered : Scripted {
  VirtualTime time;
  IOPowerSources sources;
  DescribedBattery battery{sources, time};
};

INSTANTIATE_TEST_SUITE_P(MacOS, SensorSourceContract,
                         testing::Values(SourceMaker<SensorSource>{
                             "AppleSMC",
                             [] {
                               const auto owner = std::make_shared<Controlled>();
                               return std::shared_ptr<SensorSource>(owner, &owner->collector);
                             }}),
                         nameOf<SensorSource>);
INSTANTIATE_TEST_SUITE_P(MacOS, BatterySourceContract,
                         testing::Values(SourceMaker<BatterySource>{
                             "IOKit",
                             [] {
                               const auto owner = std::make_shared<Powered>();
                               return std::shared_ptr<BatterySource>(owner, &owner->battery);
                             }}),
                         nameOf<BatterySource>);

}  // namespace
}  // namespace vantora::test
