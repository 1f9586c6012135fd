// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_sensor_source.hpp"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/linux/sensors/linux_sensor_source_fixture.hpp"

namespace vantora {
namespace {

using test::allSensors;
using test::unavailable;
using LinuxSensorSourceTest = test::LinuxSensorSourceFixture;

TEST_F(LinuxSensorSourceTest, LooksAgainAtOnceWhenADeviceIsGone) {
  useMachine("raspberry-pi-4");
  EXPECT_EQ(cpuTemperature().value, 47.712);
  // The driver was loaded anew: the old files answer no more, and the chip has a new number.
  calls.fail(tree->path("hwmon/hwmon0/temp1_input"), ENODEV);
  tree->rename("hwmon/hwmon0", "hwmon/gone");
  tree->remove("hwmon/gone/name");
  tree->write("hwmon/hwmon9/name", "cpu_thermal\n");
  tree->write("hwmon/hwmon9/temp1_input", "44000\n");
  EXPECT_EQ(cpuTemperature(), valid(44, "Linux hwmon · sensor de CPU (cpu_thermal) · °C"));
}

TEST_F(LinuxSensorSourceTest, SaysSoWhenAChipIsGoneForGood) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  for (const char* name :
       {"temp1_input", "temp2_input", "temp3_input", "temp4_input", "temp5_input"}) {
    calls.fail(tree->path(std::string("hwmon/hwmon6/") + name), ENODEV);
  }
  calls.fail(tree->path("hwmon/hwmon5/fan1_input"), ENODEV);
  tree->rename("hwmon/hwmon6", "gone6");
  tree->rename("hwmon/hwmon5", "gone5");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            unavailable("Linux hwmon · nenhum sensor de CPU nesta máquina"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), unavailable("Ventoinha 1 não existe nesta máquina"));
}

TEST_F(LinuxSensorSourceTest, CountsADeviceThatStaysGoneAsAFailure) {
  useMachine("raspberry-pi-4");
  (void)cpuTemperature();
  calls.fail(tree->path("hwmon/hwmon0/temp1_input"), ENODEV);
  for (int pass = 0; pass < 3; ++pass) {
    EXPECT_EQ(cpuTemperature(), unavailable("Linux · apenas 0/1 sensores de CPU disponíveis"));
  }
  calls.clear();
  EXPECT_EQ(cpuTemperature().source,
            "Linux · sensores de CPU sem resposta; nova tentativa em até 60 s");
  EXPECT_EQ(calls.opens, 0);
}

TEST_F(LinuxSensorSourceTest, LooksForAnAbsentChipEverySixtySeconds) {
  useMachine("raspberry-pi-4");
  tree->rename("hwmon/hwmon0", "gone");
  const auto absent = unavailable("Linux hwmon · nenhum sensor de CPU nesta máquina");
  EXPECT_EQ(cpuTemperature(), absent);
  tree->rename("gone", "hwmon/hwmon0");
  time.advance(Seconds{59.999});
  calls.clear();
  EXPECT_EQ(cpuTemperature(), absent);
  EXPECT_EQ(calls.opens, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(cpuTemperature().value, 47.712);
}

TEST_F(LinuxSensorSourceTest, NoticesAChipThatAppearsBesideTheOthers) {
  useMachine("server-with-ups");
  tree->rename("hwmon/hwmon1", "later");
  EXPECT_EQ(cpuTemperature().value, 54);
  tree->rename("later", "hwmon/hwmon1");
  time.advance(Seconds{59.999});
  EXPECT_EQ(cpuTemperature().value, 54);
  time.advance(Seconds{0.001});
  EXPECT_EQ(cpuTemperature().value, 58);
}

TEST_F(LinuxSensorSourceTest, LooksNoFurtherWhileTheChipsStayTheSame) {
  useMachine("server-with-ups");
  (void)cpuTemperature();
  time.advance(Seconds{60});
  calls.clear();
  (void)cpuTemperature();
  EXPECT_EQ(calls.opens, 1);  // the listing
}

TEST_F(LinuxSensorSourceTest, SurvivesAChipThatDisappearsBetweenListingAndReading) {
  for (const char* file : {"name", "temp1_input", "temp1_label"}) {
    useMachine("raspberry-pi-4");
    bool removed = false;
    calls.beforeOpen = [&](const std::string& name) {
      if (name == file && !removed) {
        removed = true;
        tree->remove("hwmon/hwmon0");
      }
    };
    const MetricSample gone = cpuTemperature();
    EXPECT_TRUE(removed) << file;
    EXPECT_EQ(gone, unavailable("Linux hwmon · nenhum sensor de CPU nesta máquina")) << file;
    calls.beforeOpen = nullptr;
  }
}

TEST_F(LinuxSensorSourceTest, ForgetsEverythingWithAReset) {
  useMachine("raspberry-pi-4");
  tree->write("hwmon/hwmon0/temp1_input", "");
  for (int pass = 0; pass < 4; ++pass) {
    (void)cpuTemperature();
  }
  tree->write("hwmon/hwmon0/temp1_input", "47712\n");
  source->reset();
  EXPECT_EQ(cpuTemperature().value, 47.712);
}

}  // namespace
}  // namespace vantora
