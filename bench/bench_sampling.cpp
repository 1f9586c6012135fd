// SPDX-License-Identifier: MIT
//
// What a reading costs beside the bare system calls that it needs. Both are taken in
// turn in the same run, and "ratio" is the median of ours over the median of theirs.
// "Cold" walks through more memory than the caches hold before each turn, which is how a
// program that runs once a second finds the machine.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/proc_stat.hpp"
#include "platform/linux/rtnetlink_source.hpp"
#include "platform/linux/unique_fd.hpp"
#include "runtime/system_clock.hpp"
#include "sampling/sampling_coordinator.hpp"

namespace vantora {
namespace {

void flushCaches() {
  constexpr std::size_t moreThanAnyCache = std::size_t{64} << 20U;
  constexpr std::size_t cacheLine = 64;
  static std::vector<std::uint8_t> memory(moreThanAnyCache);
  for (std::size_t place = 0; place < memory.size(); place += cacheLine) {
    ++memory[place];
  }
  benchmark::ClobberMemory();
}

double median(std::vector<double> spans) {
  const auto middle = spans.begin() + static_cast<std::ptrdiff_t>(spans.size() / 2);
  std::nth_element(spans.begin(), middle, spans.end());
  return *middle;
}

template <typename Work>
double secondsFor(Work& work, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int call = 0; call < calls; ++call) {
    work();
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / calls;
}

// One turn of ours and one of theirs an iteration.
template <typename Ours, typename Theirs>
void compare(benchmark::State& state, bool isCold, Ours ours, Theirs theirs) {
  const int calls = isCold ? 1 : 100;
  std::vector<double> ourSpans;
  std::vector<double> theirSpans;
  ours();
  theirs();
  for (auto _ : state) {
    if (isCold) {
      flushCaches();
    }
    ourSpans.push_back(secondsFor(ours, calls));
    if (isCold) {
      flushCaches();
    }
    theirSpans.push_back(secondsFor(theirs, calls));
    state.SetIterationTime(ourSpans.back());
  }
  constexpr double nanoseconds = 1e9;
  const double our = median(std::move(ourSpans));
  const double their = median(std::move(theirSpans));
  state.counters["ours_ns"] = our * nanoseconds;
  state.counters["bare_ns"] = their * nanoseconds;
  state.counters["ratio"] = our / their;
}

// The bare system calls.

class BareTicks {
 public:
  void operator()() const {
    std::array<char, 512> buffer;
    benchmark::DoNotOptimize(::pread(file_.get(), buffer.data(), buffer.size(), 0));
  }

 private:
  UniqueFd file_{::open("/proc/stat", O_RDONLY | O_CLOEXEC)};
};

class BareNetwork {
 public:
  explicit BareNetwork(const std::string& name)
      : received_(open(name, "rx_bytes")), sent_(open(name, "tx_bytes")) {
    sockaddr_nl groups{};
    groups.nl_family = AF_NETLINK;
    groups.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE;
    (void)::bind(events_.get(), reinterpret_cast<const sockaddr*>(&groups), sizeof groups);
  }

  void operator()() const {
    std::array<char, 128> buffer;
    benchmark::DoNotOptimize(::recv(events_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT));
    benchmark::DoNotOptimize(::pread(received_.get(), buffer.data(), buffer.size(), 0));
    benchmark::DoNotOptimize(::pread(sent_.get(), buffer.data(), buffer.size(), 0));
  }

 private:
  static UniqueFd open(const std::string& name, const char* file) {
    const std::string path = "/sys/class/net/" + name + "/statistics/" + file;
    return UniqueFd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  }

  UniqueFd events_{::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)};
  UniqueFd received_;
  UniqueFd sent_;
};

// The machine's uplink; the loopback where there is none.
std::string interfaceToRead() {
  const SystemClock clock;
  RtnetlinkSource source;
  return NetworkCollector(source, clock).sample(std::nullopt).name.value_or("lo");
}

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

// Runs what is posted at once and hands out the timer's task: a pass without its loop.
class DirectQueue final : public TaskQueue {
 public:
  void post(Task task) override { task(); }
  TimerHandle runAfter(Seconds /*delay*/, Seconds /*leeway*/, Task /*task*/) override {
    return nullptr;
  }
  TimerHandle runEvery(Seconds /*interval*/, Seconds /*leeway*/, Task task) override {
    tick = std::move(task);
    return nullptr;
  }
  Task tick;
};

class NoBattery final : public BatterySource {
 public:
  BatteryReadings read() override { return {}; }
};
class NoSensors final : public SensorSource {
 public:
  void configure(MetricSet /*demand*/) override {}
  SampleTable sample(MetricSet /*demand*/) override { return {}; }
  void reset() override {}
};

void takePass(benchmark::State& state, bool isCold) {
  const SystemClock clock;
  DirectQueue queue;
  DirectQueue mainQueue;
  const auto coordinator = SamplingCoordinator::create(
      queue, mainQueue, clock,
      {std::make_unique<ProcStatTicks>(), std::make_unique<RtnetlinkSource>(),
       std::make_unique<NoBattery>(), std::make_unique<NoSensors>()});
  MetricSnapshot latest;
  coordinator->onSnapshot = [&](MetricSnapshot snapshot) { latest = std::move(snapshot); };
  AppConfiguration configuration;
  configuration.modules.resize(2);
  configuration.modules[0].top = MetricID::upload;
  configuration.modules[0].bottom = MetricID::download;
  configuration.modules[1].top = MetricID::cpuUsage;
  configuration.modules[1].bottom = MetricID::none;
  const std::string name = interfaceToRead();
  if (name == "lo") {
    configuration.networkInterface = name;
  }
  coordinator->configure(configuration);
  const BareTicks bareTicks;
  const BareNetwork bareNetwork(name);
  compare(
      state, isCold, [&] { queue.tick(); },
      [&] {
        bareTicks();
        bareNetwork();
      });
}

constexpr int coldTurns = 300;
constexpr int hotTurns = 300;

BENCHMARK_CAPTURE(readTicks, hot, false)->UseManualTime()->Iterations(hotTurns);
BENCHMARK_CAPTURE(readTicks, cold, true)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(readNetwork, hot, false)->UseManualTime()->Iterations(hotTurns);
BENCHMARK_CAPTURE(readNetwork, cold, true)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(takePass, hot, false)->UseManualTime()->Iterations(hotTurns);
BENCHMARK_CAPTURE(takePass, cold, true)->UseManualTime()->Iterations(coldTurns);

}  // namespace
}  // namespace vantora

BENCHMARK_MAIN();
