// SPDX-License-Identifier: MIT
//
// What a whole sampling pass costs, from the collectors to the published snapshot, beside
// the bare system calls of all that it reads: with the default readings of CPU and network
// alone, with every metric shown, and with every metric and the battery's turn, which comes
// every 30 s.
#include <memory>

#include "bare_counters.hpp"
#include "comparison.hpp"
#include "laptop.hpp"
#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/cpu/proc_stat.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "sampling/sampling_coordinator.hpp"

namespace vantora::bench {
namespace {

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

/// A coordinator on the machine's own counters and the laptop's supplies and sensors.
class Sampling {
 public:
  Sampling(const Laptop& laptop, const std::string& interface) : interface_(interface) {
    coordinator_ = SamplingCoordinator::create(
        queue_, mainQueue_, clock_,
        {std::make_unique<ProcStatTicks>(), std::make_unique<RtnetlinkSource>(),
         std::make_unique<LinuxBatterySource>(clock_, laptop.path("power_supply")),
         std::make_unique<LinuxSensorSource>(
             clock_, LinuxSensorSource::Roots{laptop.path("hwmon"), laptop.path("power_supply")})});
    coordinator_->onSnapshot = [this](MetricSnapshot snapshot) { latest_ = std::move(snapshot); };
  }

  void show(MetricSet metrics) {
    AppConfiguration configuration;
    configuration.modules.clear();
    for (const MetricID metric : metrics) {
      ModuleConfiguration module;
      module.top = metric;
      module.bottom = MetricID::none;
      configuration.modules.push_back(module);
    }
    if (interface_ == "lo") {
      configuration.networkInterface = interface_;
    }
    coordinator_->configure(configuration);
  }

  void tick() { queue_.tick(); }
  void tickWithBattery() { coordinator_->refreshBattery(); }

 private:
  const SystemClock clock_;
  const std::string interface_;
  DirectQueue queue_;
  DirectQueue mainQueue_;
  MetricSnapshot latest_;
  std::shared_ptr<SamplingCoordinator> coordinator_;
};

constexpr MetricSet countersAlone{MetricID::cpuUsage, MetricID::upload, MetricID::download};

MetricSet everyMetric() {
  MetricSet metrics;
  for (const MetricID metric : allMetrics) {
    metrics.insert(metric);
  }
  return metrics;
}

void counters(benchmark::State& state, bool isCold) {
  const Laptop laptop;
  const std::string name = interfaceToRead();
  Sampling sampling(laptop, name);
  sampling.show(countersAlone);
  const BareTicks ticks;
  const BareNetwork network(name);
  compare(
      state, isCold, [&] { sampling.tick(); },
      [&] {
        ticks();
        network();
      });
}

void everything(benchmark::State& state, bool isCold) {
  const Laptop laptop;
  const std::string name = interfaceToRead();
  Sampling sampling(laptop, name);
  sampling.show(everyMetric());
  const BareTicks ticks;
  const BareNetwork network(name);
  const BareSensors sensors(laptop);
  compare(
      state, isCold, [&] { sampling.tick(); },
      [&] {
        ticks();
        network();
        sensors();
      });
}

void everythingWithBattery(benchmark::State& state, bool isCold) {
  const Laptop laptop;
  const std::string name = interfaceToRead();
  Sampling sampling(laptop, name);
  sampling.show(everyMetric());
  const BareTicks ticks;
  const BareNetwork network(name);
  const BareBattery battery(laptop);
  const BareSensors sensors(laptop);
  compare(
      state, isCold, [&] { sampling.tickWithBattery(); },
      [&] {
        ticks();
        network();
        battery();
        sensors();
      });
}

BENCHMARK_CAPTURE(counters, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(counters, cold, true)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(everything, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(everything, cold, true)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(everythingWithBattery, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(everythingWithBattery, cold, true)->UseManualTime()->Iterations(turns);

}  // namespace
}  // namespace vantora::bench

BENCHMARK_MAIN();
