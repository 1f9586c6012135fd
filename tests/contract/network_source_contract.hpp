// SPDX-License-Identifier: MIT
//
// What every NetworkSource promises. A machine of a test has `source`.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "sampling/network_source.hpp"

namespace vantora::test {

template <typename Machine>
class NetworkSourceContract : public testing::Test {
 protected:
  Machine machine_;
  NetworkSource& source_ = machine_.source;

  [[nodiscard]] bool isInTable(const std::string& name) {
    const auto table = source_.read();
    return table && std::any_of((*table).begin(), (*table).end(),
                                [&](const auto& interface) { return interface.name == name; });
  }
};
TYPED_TEST_SUITE_P(NetworkSourceContract);

TYPED_TEST_P(NetworkSourceContract, ListsNamedInterfacesUnderDifferentIndexes) {
  const auto table = this->source_.read();
  ASSERT_TRUE(table.hasValue());
  ASSERT_FALSE(table->empty());
  std::set<std::uint32_t> indexes;
  for (const NetworkInterface& interface : *table) {
    EXPECT_FALSE(interface.name.empty());
    EXPECT_TRUE(indexes.insert(interface.index).second) << interface.name;
  }
}

TYPED_TEST_P(NetworkSourceContract, NeverTakesTheLoopbackForPhysical) {
  const auto table = this->source_.read();
  ASSERT_TRUE(table.hasValue());
  for (const NetworkInterface& interface : *table) {
    const bool isLoopback = interface.name == "lo" || interface.name == "lo0";
    EXPECT_FALSE(isLoopback && interface.isPhysical);
  }
}

TYPED_TEST_P(NetworkSourceContract, GivesTheSameTableWhenNothingChanged) {
  const auto table = this->source_.read();
  ASSERT_TRUE(table.hasValue());
  const std::vector<NetworkInterface> before(table->begin(), table->end());
  const auto again = this->source_.read();
  ASSERT_TRUE(again.hasValue());
  EXPECT_TRUE(std::equal(before.begin(), before.end(), again->begin(), again->end()));
}

TYPED_TEST_P(NetworkSourceContract, CountsOnForEveryInterface) {
  const auto table = this->source_.read();
  ASSERT_TRUE(table.hasValue());
  for (std::size_t position = 0; position < table->size(); ++position) {
    const auto before = this->source_.counters(position);
    const auto after = this->source_.counters(position);
    ASSERT_TRUE(before.hasValue() && after.hasValue()) << (*table)[position].name;
    EXPECT_GE(after->received, before->received);
    EXPECT_GE(after->sent, before->sent);
  }
}

TYPED_TEST_P(NetworkSourceContract, HasItsPrimaryAndAddressedInterfacesInTheTable) {
  ASSERT_TRUE(this->source_.read().hasValue());
  const std::optional<std::string> primary = this->source_.primaryInterface();
  if (primary) {
    EXPECT_TRUE(this->isInTable(*primary)) << *primary;
  }
  for (const std::string& name : this->source_.addressedInterfaces()) {
    EXPECT_TRUE(this->isInTable(name)) << name;
  }
}

TYPED_TEST_P(NetworkSourceContract, NamesTheMechanismOfItsCounters) {
  ASSERT_TRUE(this->source_.read().hasValue());
  (void)this->source_.counters(0);
  EXPECT_FALSE(this->source_.mechanism().empty());
}

REGISTER_TYPED_TEST_SUITE_P(NetworkSourceContract, ListsNamedInterfacesUnderDifferentIndexes,
                            NeverTakesTheLoopbackForPhysical, GivesTheSameTableWhenNothingChanged,
                            CountsOnForEveryInterface,
                            HasItsPrimaryAndAddressedInterfacesInTheTable,
                            NamesTheMechanismOfItsCounters);

}  // namespace vantora::test
