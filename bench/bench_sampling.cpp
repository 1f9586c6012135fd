// SPDX-License-Identifier: MIT
//
// What a reading of CPU and network costs beside the bare system calls that it needs, with
// warm caches and with cold ones.
#include "bare_counters.hpp"
#include "comparison.hpp"
#include "platform/linux/cpu/proc_stat.hpp"
#include "sampling/cpu_collector.hpp"

namespace vantora::bench {
namespace {

void readTicks(benchmark::State& state, bool isCold) {
  const SystemClock clock;
  ProcStatTicks ticks;
  CPUCollector collector(ticks, clock);
  compare(
      state, isCold, [&] { benchmark::DoNotOptimize(collector.sample()); }, BareTicks());
}

void readNetwork(benchmark::State& state, bool isCold) {
  const SystemClock clock;
  const std::string name = interfaceToRead();
  RtnetlinkSource source;
  NetworkCollector collector(source, clock);
  const std::optional<std::string> preferred = name == "lo" ? std::optional(name) : std::nullopt;
  compare(
      state, isCold, [&] { benchmark::DoNotOptimize(collector.sample(preferred)); },
      BareNetwork(name));
}

BENCHMARK_CAPTURE(readTicks, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(readTicks, cold, true)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(readNetwork, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(readNetwork, cold, true)->UseManualTime()->Iterations(turns);

}  // namespace
}  // namespace vantora::bench

BENCHMARK_MAIN();
