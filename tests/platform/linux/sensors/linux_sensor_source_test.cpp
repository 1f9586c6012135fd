// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_sensor_source.hpp"

#include <gtest/gtest.h>

#include "platform/linux/sensors/linux_sensor_source_fixture.hpp"

namespace vantora {
namespace {

using test::allSensors;
using test::battery;
using test::cpu;
using test::fan1;
using test::unavailable;
using LinuxSensorSourceTest = test::LinuxSensorSourceFixture;

TEST_F(LinuxSensorSourceTest, ReadsAThinkPad) {
  useMachine("thinkpad-t440s");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(samples.metrics(), allSensors);
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            valid(49, "Linux hwmon · maior valor de 3 sensores de CPU (coretemp) · °C"));
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            unavailable("Linux power_supply · bateria interna sem sensor de temperatura"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM),
            valid(3325, "Linux hwmon · thinkpad · fan1_input · RPM"));
  EXPECT_EQ(*samples.find(MetricID::fan1Percent),
            unavailable("Linux hwmon · thinkpad · máximo da ventoinha 1 não informado"));
  EXPECT_EQ(*samples.find(MetricID::fan2RPM), unavailable("Ventoinha 2 não existe nesta máquina"));
  EXPECT_EQ(*samples.find(MetricID::fan2Percent),
            unavailable("Ventoinha 2 não existe nesta máquina"));
}

TEST_F(LinuxSensorSourceTest, ReadsTheFansOfAnXpsWithTheirMaxima) {
  useMachine("dell-xps-13-9370");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            valid(52, "Linux hwmon · maior valor de 5 sensores de CPU (coretemp) · °C"));
  EXPECT_EQ(*samples.find(MetricID::fan1Percent),
            valid(50, "Linux hwmon · dell_smm · 100 × fan1_input/fan1_max · % do RPM máximo"));
  EXPECT_EQ(*samples.find(MetricID::fan2Percent),
            valid(0, "Linux hwmon · dell_smm · 100 × fan2_input/fan2_max · % do RPM máximo"));
  EXPECT_EQ(samples.find(MetricID::fan2RPM)->value, 0);
}

TEST_F(LinuxSensorSourceTest, ReadsAFrameworkWithAmd) {
  useMachine("framework-13-amd");
  EXPECT_EQ(cpuTemperature(), valid(48.5, "Linux hwmon · sensor de CPU (k10temp) · °C"));
  EXPECT_EQ(sample(MetricID::fan1RPM), valid(0, "Linux hwmon · cros_ec · fan1_input · RPM"));
}

TEST_F(LinuxSensorSourceTest, ReadsTheBatteryOfAMacBookAir) {
  useMachine("macbook-air-m2-asahi");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            valid(30.4, "Linux power_supply · temperatura da bateria interna · °C"));
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            unavailable("Linux hwmon · nenhum sensor de CPU nesta máquina"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), unavailable("Ventoinha 1 não existe nesta máquina"));
}

TEST_F(LinuxSensorSourceTest, TakesTheBatteryThermometerOfApplesController) {
  useMachine("macbook-pro-2015");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            valid(33.5, "Linux hwmon · sensor da bateria (applesmc) · °C"));
  EXPECT_NEAR(samples.find(MetricID::fan1Percent)->value.value(), 2156.0 * 100 / 6156, 1e-9);
  EXPECT_NEAR(samples.find(MetricID::fan2Percent)->value.value(), 1998.0 * 100 / 5700, 1e-9);
}

TEST_F(LinuxSensorSourceTest, ReadsRaspberryPis) {
  useMachine("raspberry-pi-4");
  EXPECT_EQ(cpuTemperature(), valid(47.712, "Linux hwmon · sensor de CPU (cpu_thermal) · °C"));
  EXPECT_EQ(sample(MetricID::fan1Percent), unavailable("Ventoinha 1 não existe nesta máquina"));
  EXPECT_EQ(sample(MetricID::batteryTemperature), unavailable("Bateria interna indisponível"));
  useMachine("raspberry-pi-5");
  EXPECT_EQ(cpuTemperature().value, 52.35);
  EXPECT_EQ(sample(MetricID::fan1RPM), valid(2871, "Linux hwmon · pwmfan · fan1_input · RPM"));
}

TEST_F(LinuxSensorSourceTest, TakesTheBoardsFansAndNeverTheGraphicsCards) {
  useMachine("desktop-ryzen-5900x");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            valid(61.125, "Linux hwmon · maior valor de 3 sensores de CPU (k10temp) · °C"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM),
            valid(912, "Linux hwmon · nct6798 · fan2_input · RPM"));
  EXPECT_EQ(*samples.find(MetricID::fan2RPM), valid(0, "Linux hwmon · nct6798 · fan1_input · RPM"));
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            unavailable("Bateria interna indisponível"));
}

TEST_F(LinuxSensorSourceTest, LeavesOutTheOffsetOfAThreadripper) {
  useMachine("desktop-threadripper-1950x");
  EXPECT_EQ(cpuTemperature(),
            valid(41.5, "Linux hwmon · maior valor de 2 sensores de CPU (k10temp) · °C"));
}

TEST_F(LinuxSensorSourceTest, TakesTheHottestOfTwoProcessors) {
  useMachine("server-with-ups");
  EXPECT_EQ(cpuTemperature().value, 58);
}

TEST_F(LinuxSensorSourceTest, IsQuietOnAMachineWithoutAnySensor) {
  useMachine("raspberry-pi-4");
  tree->remove("hwmon");
  tree->remove("power_supply");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(samples.metrics(), allSensors);
  for (const MetricID metric : allSensors) {
    EXPECT_EQ(samples.find(metric)->quality, Quality::unavailable);
    EXPECT_FALSE(samples.find(metric)->source.empty());
  }
}

TEST_F(LinuxSensorSourceTest, TouchesNothingWhileNoSensorIsDemanded) {
  useMachine("thinkpad-t440s");
  calls.clear();
  const MetricSet others{MetricID::cpuUsage, MetricID::batteryPercent, MetricID::none,
                         MetricID::inputWatts};
  EXPECT_TRUE(source->sample(others).empty());
  source->configure(others);
  source->configure({});
  EXPECT_EQ(calls.opens, 0);
  EXPECT_EQ(calls.reads, 0);
}

TEST_F(LinuxSensorSourceTest, CostsOneReadForEachValueAfterTheFirstPass) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  calls.clear();
  (void)source->sample(allSensors);
  EXPECT_EQ(calls.opens, 0);
  EXPECT_EQ(calls.reads, 5 + 2);  // five cores and package, two fans; no battery sensor
}

TEST_F(LinuxSensorSourceTest, ReadsNothingForMetricsThatAreNotDemanded) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  (void)source->sample(fan1);
  calls.clear();
  EXPECT_EQ(source->sample(fan1).metrics(), fan1);
  EXPECT_EQ(calls.reads, 1);  // for speed and percentage together
  (void)source->sample(battery);
  calls.clear();
  (void)source->sample(battery);
  EXPECT_EQ(calls.reads, 0);
}

TEST_F(LinuxSensorSourceTest, OpensWhenConfiguredSoThatThePassOnlyReads) {
  useMachine("dell-xps-13-9370");
  source->configure(cpu);
  calls.clear();
  EXPECT_EQ(cpuTemperature().value, 52);
  EXPECT_EQ(calls.opens, 0);
}

TEST_F(LinuxSensorSourceTest, LetsGoOfEverythingWhenNoSensorIsDemandedAnyMore) {
  useMachine("raspberry-pi-4");
  (void)cpuTemperature();
  source->configure({MetricID::cpuUsage});
  calls.clear();
  EXPECT_EQ(cpuTemperature().value, 47.712);
  EXPECT_GT(calls.opens, 0);
}

TEST_F(LinuxSensorSourceTest, SeesNewValuesInFilesThatItKeepsOpen) {
  useMachine("raspberry-pi-4");
  EXPECT_EQ(cpuTemperature().value, 47.712);
  tree->write("hwmon/hwmon0/temp1_input", "51607\n");
  EXPECT_EQ(cpuTemperature().value, 51.607);
}

}  // namespace
}  // namespace vantora
