// SPDX-License-Identifier: MIT
//
// The contract, kept by the real ones of Linux and by the fake.
#include "contract/tick_counters_contract.hpp"
#include "platform/linux/cpu/proc_stat.hpp"
#include "support/fake_tick_counters.hpp"

namespace vantora::test {
namespace {

struct FakeTicks {
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

using TickSources = testing::Types<FakeTicks, ProcStat>;
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, TickCountersContract, TickSources);

}  // namespace
}  // namespace vantora::test
