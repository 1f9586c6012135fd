// SPDX-License-Identifier: MIT
//
// What every TickCounters promises. A system of a test has `counters` and letTimePass().
#pragma once

#include <gtest/gtest.h>

#include "sampling/tick_counters.hpp"

namespace vantora::test {

template <typename Machine>
class TickCountersContract : public testing::Test {
 protected:
  Machine machine_;
  TickCounters& counters_ = machine_.counters;
};
TYPED_TEST_SUITE_P(TickCountersContract);

TYPED_TEST_P(TickCountersContract, CountsSinceTheMachineStarted) {
  const Result<CPUTicks> ticks = this->counters_.read();
  ASSERT_TRUE(ticks.hasValue());
  EXPECT_GT(ticks->active, 0U);
  EXPECT_GT(ticks->active + ticks->idle, ticks->active);
}

TYPED_TEST_P(TickCountersContract, CountsOnWhileTimePasses) {
  const Result<CPUTicks> before = this->counters_.read();
  this->machine_.letTimePass();
  const Result<CPUTicks> after = this->counters_.read();
  ASSERT_TRUE(before.hasValue() && after.hasValue());
  EXPECT_GT(after->active + after->idle, before->active + before->idle);
  EXPECT_GE(after->active, before->active);
}

TYPED_TEST_P(TickCountersContract, HasTwoDifferentTexts) {
  const TickTexts texts = this->counters_.texts();
  EXPECT_FALSE(texts.reading.empty());
  EXPECT_FALSE(texts.noDelta.empty());
  EXPECT_NE(texts.reading, texts.noDelta);
}

REGISTER_TYPED_TEST_SUITE_P(TickCountersContract, CountsSinceTheMachineStarted,
                            CountsOnWhileTimePasses, HasTwoDifferentTexts);

}  // namespace vantora::test
