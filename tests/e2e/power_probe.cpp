// SPDX-License-Identifier: MIT
//
// Prints what the Linux power adapters see on the machine it runs on:
// a line for battery and sensors at the start and after each change of the power source, a
// line for each sleep and wake. Ends when its standard input does.
#include <uv.h>

#include <cstdio>
#include <cstdlib>

#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/power/linux_power_events.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/uv_loop.hpp"

namespace {

using namespace vantora;  // NOLINT: a program of its own

constexpr MetricSet sensors{MetricID::batteryTemperature, MetricID::cpuTemperature,
                            MetricID::fan1RPM, MetricID::fan1Percent};

void print(const char* name, const MetricSample& sample) {
  if (sample.value) {
    std::printf(" %s=%.2f", name, *sample.value);
  } else {
    std::printf(" %s=-", name);
  }
}

void printReadings(LinuxBatterySource& battery, LinuxSensorSource& sensorSource) {
  const BatteryReadings readings = battery.read();
  std::printf("battery");
  print("percent", readings.percentage);
  print("minutes", readings.duration);
  print("watts", readings.adapterWatts);
  std::printf(" ac=%d charging=%d\n", readings.onAC ? 1 : 0, readings.charging ? 1 : 0);
  const SampleTable samples = sensorSource.sample(sensors);
  std::printf("sensors");
  print("cpu", *samples.find(MetricID::cpuTemperature));
  print("battery", *samples.find(MetricID::batteryTemperature));
  print("rpm", *samples.find(MetricID::fan1RPM));
  print("fan", *samples.find(MetricID::fan1Percent));
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

int main() {
  const SystemClock clock;
  UvLoop loop;
  LinuxBatterySource battery(clock);
  LinuxSensorSource sensorSource(clock);
  LinuxPowerEvents events(loop.raw(), loop.queue(),
                          systemBusAddress(std::getenv("DBUS_SYSTEM_BUS_ADDRESS")));
  events.start({[&] { printReadings(battery, sensorSource); },
                [](const SleepHold& hold) {
                  std::printf("sleep held=%d\n", hold ? 1 : 0);
                  std::fflush(stdout);
                },
                [] {
                  std::printf("wake\n");
                  std::fflush(stdout);
                },
                [] {}});
  printReadings(battery, sensorSource);

  uv_poll_t input;
  uv_poll_init(&loop.raw(), &input, STDIN_FILENO);
  input.data = &loop;
  uv_poll_start(&input, UV_READABLE | UV_DISCONNECT,
                [](uv_poll_t* handle, int, int) { static_cast<UvLoop*>(handle->data)->stop(); });
  loop.run();
  uv_close(reinterpret_cast<uv_handle_t*>(&input), nullptr);
  uv_run(&loop.raw(), UV_RUN_NOWAIT);
  return 0;
}
