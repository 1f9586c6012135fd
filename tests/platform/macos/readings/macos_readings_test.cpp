// SPDX-License-Identifier: MIT
//
// What can be said of any Mac's readings.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/macos/readings/apple_smc.hpp"
#include "platform/macos/readings/io_power_sources.hpp"
#include "platform/macos/readings/mach_tick_counters.hpp"
#include "platform/macos/readings/sysctl_network_source.hpp"
#include "platform/macos/settings/cf_user_defaults.hpp"
#include "sampling/apple/smc_reader.hpp"

namespace vantora {
namespace {

TEST(MachTickCounters, CountOnBetweenTwoReadings) {
  MachTickCounters counters;
  const auto first = counters.read();
  const auto second = counters.read();
  ASSERT_TRUE(first);
  ASSERT_TRUE(second);
  EXPECT_GT(first->active, 0U);
  EXPECT_GT(first->idle, 0U);
  EXPECT_GE(second->active, first->active);
  EXPECT_GE(second->idle, first->idle);
}

TEST(SysctlNetworkSource, ListsTheLoopbackAsVirtual) {
  SysctlNetworkSource source;
  const auto table = source.read();
  ASSERT_TRUE(table);
  const auto loopback = std::find_if(table->begin(), table->end(),
                                     [](const auto& each) { return each.name == "lo0"; });
  ASSERT_NE(loopback, table->end());
  EXPECT_TRUE(loopback->isUp);
  EXPECT_FALSE(loopback->isPhysical);
  EXPECT_TRUE(source.counters(static_cast<std::size_t>(loopback - table->begin())));
  EXPECT_FALSE(source.counters(table->size()));
  EXPECT_TRUE(source.addressedInterfaces().contains("lo0"));
}

TEST(SysctlNetworkSource, NamesAPrimaryInterfaceOfTheTableOrNone) {
  SysctlNetworkSource source;
  const auto table = source.read();
  ASSERT_TRUE(table);
  if (const auto primary = source.primaryInterface()) {
    EXPECT_TRUE(std::any_of(table->begin(), table->end(),
                            [&](const auto& each) { return each.name == *primary; }));
  }
}

TEST(IOPowerSources, DescribeThemselvesWithAType) {
  for (const PowerSourceDescription& description : IOPowerSources().powerSources()) {
    EXPECT_TRUE(description.text("Type"));
  }
}

TEST(AppleSMC, KnowsHowManyFansThereAreWhereItOpens) {
  const auto reader = SMCReader::open(&openAppleSMC);
  if (!reader) {
    GTEST_SKIP() << "no controller here, as on a virtual machine";
  }
  EXPECT_TRUE(reader->readUInt8("FNum"));
  EXPECT_FALSE(reader->readUInt8("~~~~"));
}

TEST(CFUserDefaults, HaveNothingUnderAnUnusedKey) {
  EXPECT_EQ(CFUserDefaults().text("Vantora.NobodyUsesThis"), std::nullopt);
}

}  // namespace
}  // namespace vantora
