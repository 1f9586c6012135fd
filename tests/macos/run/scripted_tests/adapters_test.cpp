// SPDX-License-Identifier: MIT
//
// The adapters of the readings on a machine that says what a test wants.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "machine/machine.hpp"
#include "objc/objects.hpp"
#include "platform/macos/base/autorelease_pool.hpp"
#include "platform/macos/readings/apple_smc.hpp"
#include "platform/macos/readings/io_power_sources.hpp"
#include "platform/macos/readings/mach_tick_counters.hpp"
#include "platform/macos/readings/sysctl_network_source.hpp"
#include "sampling/apple/smc_reader.hpp"

namespace vantora {
namespace {

using standin::ControllerMode;
using standin::Machine;
using standin::withMachine;

class OnAScriptedMachine : public testing::Test {
 protected:
  OnAScriptedMachine() { standin::resetMachine(); }
  ~OnAScriptedMachine() override { standin::resetMachine(); }

  static standin::Calls calls() {
    return withMachine([](Machine& machine) { return machine.calls; });
  }

  const AutoreleasePool pool_;
};

class TheTickCounters : public OnAScriptedMachine {
 protected:
  MachTickCounters counters_;
};

TEST_F(TheTickCounters, CountUserSystemAndNiceAsActive) {
  withMachine([](Machine& machine) {
    machine.busyPercent = 0;
    const std::uint32_t ticks[4] = {100, 20, 5000, 3};
    std::copy(std::begin(ticks), std::end(ticks), machine.ticks);
  });
  const auto read = counters_.read();
  ASSERT_TRUE(read);
  EXPECT_EQ(read->active, 123U);
  EXPECT_EQ(read->idle, 6000U);
}

TEST_F(TheTickCounters, SayWhichStatusTheSystemGave) {
  withMachine([](Machine& machine) { machine.hostStatus = -7; });
  const auto read = counters_.read();
  ASSERT_FALSE(read);
  EXPECT_EQ(read.fault().detail, "Mach host_statistics: -7");
}

TEST_F(TheTickCounters, GiveTheHostsPortBackAlsoAfterAFailure) {
  (void)counters_.read();
  withMachine([](Machine& machine) { machine.hostStatus = 5; });
  (void)counters_.read();
  EXPECT_EQ(withMachine([](Machine& machine) { return machine.hostRights; }), 0);
}

class TheNetworkSource : public OnAScriptedMachine {
 protected:
  SysctlNetworkSource source_;
};

TEST_F(TheNetworkSource, ReadsFlagsTypeAndCountersFromEachRecord) {
  withMachine([](Machine& machine) {
    machine.interfaces[1].receivedPerSecond = machine.interfaces[1].sentPerSecond = 0;
    machine.interfaces[1].received = (1ULL << 40) + 7;
    machine.interfaces[1].sent = (1ULL << 33) + 5;
    machine.interfaces[2].flags = 0;
  });
  const auto table = source_.read();
  ASSERT_TRUE(table);
  ASSERT_EQ(table->size(), 3U);
  EXPECT_EQ((*table)[1], (NetworkInterface{"en0", 2, true, true}));
  EXPECT_EQ((*table)[2], (NetworkInterface{"utun0", 3, false, false}));
  EXPECT_EQ(source_.counters(1)->received, (1ULL << 40) + 7);
  EXPECT_EQ(source_.counters(1)->sent, (1ULL << 33) + 5);
}

TEST_F(TheNetworkSource, AsksForEachNameOnceAsLongAsTheTableIsTheSame) {
  for (int pass = 0; pass < 5; ++pass) {
    ASSERT_TRUE(source_.read());
  }
  EXPECT_EQ(calls().interfaceTables, 5);
  EXPECT_EQ(calls().interfaceNames, 3);
}

TEST_F(TheNetworkSource, AsksForTheNamesAgainFromWhereTheTableChanged) {
  ASSERT_TRUE(source_.read());
  withMachine([](Machine& machine) {
    machine.interfaces[1].index = 9;
    machine.interfaces[1].name = "en4";
  });
  auto table = source_.read();
  ASSERT_TRUE(table);
  EXPECT_EQ((*table)[1].name, "en4");
  EXPECT_EQ((*table)[2].name, "utun0");
  EXPECT_EQ(calls().interfaceNames, 3 + 2);
  withMachine([](Machine& machine) { machine.interfaces.pop_back(); });
  ASSERT_TRUE(source_.read());
  withMachine([](Machine& machine) {
    standin::Interface added = machine.interfaces[0];
    added.index = 3;
    added.name = "utun5";
    machine.interfaces.push_back(added);
  });
  table = source_.read();
  ASSERT_TRUE(table);
  EXPECT_EQ(table->back().name, "utun5");
}

TEST_F(TheNetworkSource, LeavesOutWhatHasNoNameAnyMore) {
  withMachine([](Machine& machine) { machine.interfaces[2].index = 2; });
  ASSERT_TRUE(source_.read());
  withMachine([](Machine& machine) { machine.truncatedTo = 100; });
  const auto table = source_.read();
  ASSERT_TRUE(table);
  EXPECT_TRUE(table->empty());
  EXPECT_FALSE(source_.counters(0));
}

TEST_F(TheNetworkSource, FailsWhereTheSystemRefusesOrTheTableIsHuge) {
  withMachine([](Machine& machine) { machine.isInterfaceTableRefused = true; });
  EXPECT_EQ(source_.read().fault().detail, "sysctl NET_RT_IFLIST2 falhou");
  EXPECT_TRUE(source_.addressedInterfaces().empty());
  withMachine([](Machine& machine) {
    machine.isInterfaceTableRefused = false;
    machine.interfaceTablePadding = 4'000'000;
  });
  EXPECT_FALSE(source_.read());
  withMachine([](Machine& machine) { machine.interfaceTablePadding = 0; });
  EXPECT_TRUE(source_.read());
}

TEST_F(TheNetworkSource, TakesNoLinkLocalAddressForAnAddress) {
  const InterfaceNames& addressed = source_.addressedInterfaces();
  EXPECT_TRUE(addressed.contains("en0"));
  EXPECT_FALSE(addressed.contains("utun0"));
}

TEST_F(TheNetworkSource, HasNoPrimaryInterfaceWithoutANetwork) {
  EXPECT_EQ(source_.primaryInterface(), "en0");
  withMachine([](Machine& machine) { machine.primaryInterface.reset(); });
  EXPECT_EQ(source_.primaryInterface(), std::nullopt);
}

class ThePowerSources : public OnAScriptedMachine {
 protected:
  IOPowerSources sources_;
};

TEST_F(ThePowerSources, DescribeTheBatteryWithNumbersTextsAndFlags) {
  const auto described = sources_.powerSources();
  ASSERT_EQ(described.size(), 1U);
  EXPECT_EQ(described[0].text("Type"), "InternalBattery");
  EXPECT_EQ(described[0].number("Current Capacity"), 81);
  EXPECT_EQ(described[0].flag("Is Charging"), false);
  // What no double holds is left out rather than rounded.
  EXPECT_EQ(described[0].number("Power Source ID"), std::nullopt);
}

TEST_F(ThePowerSources, KeepTheSystemsOrder) {
  withMachine([](Machine& machine) {
    standin::PowerSource ups;
    ups.type = "UPS";
    machine.powerSources.insert(machine.powerSources.begin(), ups);
  });
  const auto described = sources_.powerSources();
  ASSERT_EQ(described.size(), 2U);
  EXPECT_EQ(described[0].text("Type"), "UPS");
}

TEST_F(ThePowerSources, AreNoneWhereTheSystemKnowsNone) {
  withMachine([](Machine& machine) { machine.areSourcesMissing = true; });
  EXPECT_TRUE(sources_.powerSources().empty());
}

TEST_F(ThePowerSources, HaveAnAdapterWhenOneIsPluggedIn) {
  EXPECT_FALSE(sources_.adapterDetails());
  withMachine([](Machine& machine) { machine.adapterWatts = 96; });
  ASSERT_TRUE(sources_.adapterDetails());
  EXPECT_EQ(sources_.adapterDetails()->number("Watts"), 96);
}

TEST_F(ThePowerSources, KeepNothingOfWhatTheSystemGave) {
  withMachine([](Machine& machine) { machine.adapterWatts = 96; });
  const auto read = [&] {
    const AutoreleasePool pool;
    (void)sources_.powerSources();
    (void)sources_.adapterDetails();
  };
  read();
  const long before = standin::livingObjects();
  read();
  EXPECT_EQ(standin::livingObjects(), before);
}

class TheController : public OnAScriptedMachine {
 protected:
  static void become(ControllerMode mode) {
    withMachine([mode](Machine& machine) { machine.controller = mode; });
  }
  static int connections() {
    return withMachine([](Machine& machine) { return machine.openConnections; });
  }
};

TEST_F(TheController, ReadsFloatsAndBytes) {
  const auto reader = SMCReader::open(&openAppleSMC);
  ASSERT_TRUE(reader);
  EXPECT_EQ(reader->readFloat("TB1T"), 30.5);
  EXPECT_EQ(reader->readUInt8("FNum"), 2);
  EXPECT_EQ(reader->readFloat("FNum"), std::nullopt);
  EXPECT_EQ(reader->readFloat("~~~~"), std::nullopt);
}

TEST_F(TheController, IsNotThereWhereTheServiceIsMissingOrRefuses) {
  become(ControllerMode::missing);
  EXPECT_EQ(openAppleSMC(), nullptr);
  become(ControllerMode::refusing);
  EXPECT_EQ(openAppleSMC(), nullptr);
  EXPECT_EQ(withMachine([](Machine& machine) { return machine.serviceReferences; }), 0);
}

TEST_F(TheController, ReadsNothingFromCallsThatFail) {
  const auto reader = SMCReader::open(&openAppleSMC);
  become(ControllerMode::failing);
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
}

TEST_F(TheController, TakesNoValueFromBytesThatMeanNothing) {
  become(ControllerMode::garbage);
  for (int pass = 0; pass < 100; ++pass) {
    const auto reader = SMCReader::open(&openAppleSMC);
    for (const char* key : {"TB1T", "F0Ac"}) {
      const auto value = reader->readFloat(key);
      EXPECT_TRUE(!value || std::isfinite(*value));
    }
  }
}

TEST_F(TheController, ClosesItsConnectionWithItsReader) {
  {
    const auto reader = SMCReader::open(&openAppleSMC);
    EXPECT_EQ(connections(), 1);
  }
  EXPECT_EQ(connections(), 0);
}

}  // namespace
}  // namespace vantora
