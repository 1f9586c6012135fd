// SPDX-License-Identifier: MIT
//
// What battery and sensors cost beside the bare system calls that no reader can do without,
// with warm caches and with cold ones.
#include <cstring>

#include "comparison.hpp"
#include "laptop.hpp"
#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "runtime/system_clock.hpp"
#include "sampling/apple/sensor_collector.hpp"

namespace vantora::bench {
namespace {

constexpr MetricSet sensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};

void readBattery(benchmark::State& state, bool isCold) {
  const Laptop laptop;
  const SystemClock clock;
  LinuxBatterySource source(clock, laptop.path("power_supply"));
  compare(
      state, isCold, [&] { benchmark::DoNotOptimize(source.read()); }, BareBattery(laptop));
}

void passOverHwmon(benchmark::State& state, bool isCold) {
  const Laptop laptop;
  const SystemClock clock;
  LinuxSensorSource source(clock, {laptop.path("hwmon"), laptop.path("power_supply")});
  source.configure(sensors);
  compare(
      state, isCold, [&] { benchmark::DoNotOptimize(source.sample(sensors)); },
      BareSensors(laptop));
}

/// Answers every key with a float, at the price of a system call.
class Controller final : public SMCConnection {
 public:
  std::optional<std::size_t> call(const SMCRecord& input, SMCRecord& output) override {
    benchmark::DoNotOptimize(::pread(-1, output.data(), 0, 0));
    constexpr std::uint8_t readKeyInfo = 9;
    if (input[42] == readKeyInfo) {
      constexpr std::uint32_t size = 4;
      std::memcpy(&output[28], &size, sizeof size);
      std::memcpy(&output[32], " tlf", 4);
    } else {
      constexpr float value = 42;
      std::memcpy(&output[48], &value, sizeof value);
    }
    return smcRecordSize;
  }
};

void passOver18Keys(benchmark::State& state, bool isCold) {
  const SystemClock clock;
  constexpr MetricSet demand{MetricID::cpuTemperature};
  SensorCollector collector([] { return std::make_unique<Controller>(); }, clock);
  collector.configure(demand);
  Controller controller;
  SMCRecord input{};
  input[42] = 5;
  compare(
      state, isCold, [&] { benchmark::DoNotOptimize(collector.sample(demand)); },
      [&] {
        for (int key = 0; key < 18; ++key) {
          SMCRecord output{};
          benchmark::DoNotOptimize(controller.call(input, output));
          benchmark::DoNotOptimize(output);
        }
      });
}

BENCHMARK_CAPTURE(readBattery, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(readBattery, cold, true)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(passOverHwmon, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(passOverHwmon, cold, true)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(passOver18Keys, hot, false)->UseManualTime()->Iterations(turns);
BENCHMARK_CAPTURE(passOver18Keys, cold, true)->UseManualTime()->Iterations(turns);

}  // namespace
}  // namespace vantora::bench

BENCHMARK_MAIN();
