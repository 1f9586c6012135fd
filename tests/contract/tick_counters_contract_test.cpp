// SPDX-License-Identifier: MIT
//
// What every TickCounters promises, asked of the real ones and of the fake.
#include <gtest/gtest.h>

#include "platform/linux/proc_stat.hpp"
#include "support/fake_tick_counters.hpp"

namespace vantora {
namespace {

struct Fake {
  test::FakeTickCounters counters;
  void letTimePass() { counters.set(1001, 9001); }
};

struct ProcStat {
  ProcStatTicks counters;
  // A tick is at most 10 ms long, so this ends by itself on any machine that runs.
  void letTimePass() {
    const CPUTicks start = *counters.read();
    for (int reads = 0; reads < 10'000'000; ++reads) {
      const CPUTicks now = *counters.read();
      if (now.active + now.idle > start.active + start.idle) {
        return;
      }
    }
  }
};

template <typename Machine>
class TickCountersContract : public testing::Test {
 protected:
  Machine machine_;
  TickCounters& counters_ = machine_.counters;
};
using Machines = testing::Types<Fake, ProcStat>;
TYPED_TEST_SUITE(TickCountersContract, Machines);

TYPED_TEST(TickCountersContract, CountsSinceTheMachineStarted) {
  const Result<CPUTicks> ticks = this->counters_.read();
  ASSERT_TRUE(ticks.hasValue());
  EXPECT_GT(ticks->active, 0U);
  EXPECT_GT(ticks->active + ticks->idle, ticks->active);
}

TYPED_TEST(TickCountersContract, CountsOnWhileTimePasses) {
  const Result<CPUTicks> before = this->counters_.read();
  this->machine_.letTimePass();
  const Result<CPUTicks> after = this->counters_.read();
  ASSERT_TRUE(before.hasValue() && after.hasValue());
  EXPECT_GT(after->active + after->idle, before->active + before->idle);
  EXPECT_GE(after->active, before->active);
}

TYPED_TEST(TickCountersContract, HasTwoDifferentTexts) {
  const TickTexts texts = this->counters_.texts();
  EXPECT_FALSE(texts.reading.empty());
  EXPECT_FALSE(texts.noDelta.empty());
  EXPECT_NE(texts.reading, texts.noDelta);
}

}  // namespace
}  // namespace vantora
