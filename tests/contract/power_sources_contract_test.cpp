// SPDX-License-Identifier: MIT
//
// The contract, kept by the real ones of Linux, by those of the core and by the fakes.
#include "contract/power_sources_contract.hpp"

#include <utility>

#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "sampling/apple/sensor_collector.hpp"
#include "sampling/battery_collector.hpp"
#include "support/fake_power_sources.hpp"
#include "support/scripted_smc.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {
namespace {

/// What the sources work on.
struct World {
  test::VirtualTime time;
  test::ScriptedSMC controller;
  test::SysfsTree tree{"dell-xps-13-9370"};
};

template <typename Source>
struct Maker {
  std::string name;
  std::function<std::unique_ptr<Source>(World&)> make;

  // The source goes before its world.
  operator SourceMaker<Source>() const {
    return {name, [make = make] {
              struct Owner {
                World world;
                std::unique_ptr<Source> source;
              };
              const auto owner = std::make_shared<Owner>();
              owner->source = make(owner->world);
              return std::shared_ptr<Source>(owner, owner->source.get());
            }};
  }
};

INSTANTIATE_TEST_SUITE_P(
    Sources, SensorSourceContract,
    testing::Values(
        Maker<SensorSource>{"Fake",
                            [](World&) { return std::make_unique<test::FakeSensorSource>(); }},
        Maker<SensorSource>{"ClosedController",
                            [](World& world) {
                              world.controller.refuses = true;
                              return std::make_unique<SensorCollector>(world.controller.opener(),
                                                                       world.time);
                            }},
        Maker<SensorSource>{"OpenController",
                            [](World& world) {
                              world.controller.keys["TB1T"] = test::floatKey(30);
                              world.controller.keys["TB2T"] = test::floatKey(31);
                              world.controller.keys["FNum"] = test::uint8Key(1);
                              world.controller.keys["F0Ac"] = test::floatKey(1500);
                              world.controller.keys["F0Mx"] = test::floatKey(6000);
                              return std::make_unique<SensorCollector>(world.controller.opener(),
                                                                       world.time);
                            }},
        Maker<SensorSource>{"Linux",
                            [](World& world) {
                              return std::make_unique<LinuxSensorSource>(
                                  world.time, LinuxSensorSource::Roots{world.tree.hwmon(),
                                                                       world.tree.powerSupply()});
                            }},
        Maker<SensorSource>{"LinuxWithoutChips",
                            [](World& world) {
                              return std::make_unique<LinuxSensorSource>(
                                  world.time, LinuxSensorSource::Roots{"/nowhere", "/nowhere"});
                            }}),
    nameOf<SensorSource>);

class NoPowerSources final : public PowerSourcePort {
 public:
  std::optional<PowerSourceDescription> adapterDetails() override { return std::nullopt; }
  std::vector<PowerSourceDescription> powerSources() override { return {}; }
};

INSTANTIATE_TEST_SUITE_P(
    Sources, BatterySourceContract,
    testing::Values(
        Maker<BatterySource>{"Fake",
                             [](World&) { return std::make_unique<test::FakeBatterySource>(); }},
        Maker<BatterySource>{"Described",
                             [](World& world) {
                               static NoPowerSources none;
                               return std::make_unique<DescribedBattery>(none, world.time);
                             }},
        Maker<BatterySource>{"Linux",
                             [](World& world) {
                               return std::make_unique<LinuxBatterySource>(
                                   world.time, world.tree.powerSupply());
                             }},
        Maker<BatterySource>{"LinuxWithoutSupplies",
                             [](World& world) {
                               return std::make_unique<LinuxBatterySource>(world.time, "/nowhere");
                             }}),
    nameOf<BatterySource>);

}  // namespace
}  // namespace vantora::test
