// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_sensor_source.hpp"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/linux/sensors/linux_sensor_source_fixture.hpp"

namespace vantora {
namespace {

using test::allSensors;
using test::fan1;
using test::unavailable;
using LinuxSensorSourceTest = test::LinuxSensorSourceFixture;

TEST_F(LinuxSensorSourceTest, HasNoMaximumOfSomeOfTheSensors) {
  useMachine("dell-xps-13-9370");
  (void)cpuTemperature();
  calls.fail(tree->path("hwmon/hwmon6/temp3_input"), EAGAIN);
  EXPECT_EQ(cpuTemperature(), unavailable("Linux · apenas 4/5 sensores de CPU disponíveis"));
  calls.mend();
  EXPECT_EQ(cpuTemperature().value, 52);
}

TEST_F(LinuxSensorSourceTest, BelievesNoTemperatureThatCannotBe) {
  useMachine("raspberry-pi-4");
  for (const char* value :
       {"", "\n", "-", "abc\n", "47712x\n", "200000\n", "-273200\n", "99999999999999999999\n"}) {
    source->reset();
    tree->write("hwmon/hwmon0/temp1_input", value);
    EXPECT_EQ(cpuTemperature(), unavailable("Linux · apenas 0/1 sensores de CPU disponíveis"))
        << value;
  }
  tree->write("hwmon/hwmon0/temp1_input", "-12000\n");
  EXPECT_EQ(cpuTemperature().value, -12) << "a board in the cold";
}

TEST_F(LinuxSensorSourceTest, RestsSixtySecondsAfterThreeFailedPassesInARow) {
  useMachine("raspberry-pi-4");
  tree->write("hwmon/hwmon0/temp1_input", "");
  const auto partial = unavailable("Linux · apenas 0/1 sensores de CPU disponíveis");
  const auto silent =
      unavailable("Linux · sensores de CPU sem resposta; nova tentativa em até 60 s");
  EXPECT_EQ(cpuTemperature(), partial);
  EXPECT_EQ(cpuTemperature(), partial);
  EXPECT_EQ(cpuTemperature(), partial);
  EXPECT_EQ(cpuTemperature(), silent);
  tree->write("hwmon/hwmon0/temp1_input", "47712\n");
  time.advance(Seconds{59.999});
  calls.clear();
  EXPECT_EQ(cpuTemperature(), silent);
  EXPECT_EQ(calls.reads, 0);
  time.advance(Seconds{0.001});
  EXPECT_EQ(cpuTemperature().value, 47.712);
}

TEST_F(LinuxSensorSourceTest, CountsOnlyFailedPassesInARow) {
  useMachine("raspberry-pi-4");
  for (int round = 0; round < 3; ++round) {
    tree->write("hwmon/hwmon0/temp1_input", "");
    (void)cpuTemperature();
    (void)cpuTemperature();
    tree->write("hwmon/hwmon0/temp1_input", "47712\n");
    EXPECT_EQ(cpuTemperature().value, 47.712);
  }
}

TEST_F(LinuxSensorSourceTest, LetsOneGroupRestWithoutTheOthers) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  calls.fail(tree->path("hwmon/hwmon5/fan1_input"), EIO);
  for (int pass = 0; pass < 4; ++pass) {
    EXPECT_EQ(source->sample(allSensors).find(MetricID::cpuTemperature)->value, 52);
  }
  const auto silent =
      unavailable("Linux hwmon · ventoinha 1 sem resposta; nova tentativa em até 60 s");
  const SampleTable resting = source->sample(allSensors);
  EXPECT_EQ(*resting.find(MetricID::fan1RPM), silent);
  EXPECT_EQ(*resting.find(MetricID::fan1Percent), silent);
  calls.mend();
  time.advance(Seconds{59.999});
  EXPECT_EQ(sample(MetricID::fan1RPM), silent);
  time.advance(Seconds{0.001});
  EXPECT_EQ(sample(MetricID::fan1RPM).value, 2450);
}

TEST_F(LinuxSensorSourceTest, LetsOneFanRestWithoutTheOther) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  calls.fail(tree->path("hwmon/hwmon5/fan1_input"), EIO);
  for (int pass = 0; pass < 6; ++pass) {
    EXPECT_EQ(source->sample(allSensors).find(MetricID::fan2RPM)->value, 0) << pass;
  }
}

// An ASUS desktop: its controller announces a fan that is not there, and the fans that turn
// are behind the Super I/O chip, on whichever of its channels.
TEST_F(LinuxSensorSourceTest, TakesFansThatTurnBeforeThoseThatDoNot) {
  useMachine("raspberry-pi-4");
  tree->write("hwmon/hwmon1/name", "asus\n");
  tree->write("hwmon/hwmon1/fan1_input", "0\n");
  tree->write("hwmon/hwmon2/name", "nct6798\n");
  for (const char* file : {"fan1_input", "fan2_input", "fan3_input", "fan5_input"}) {
    tree->write(std::string("hwmon/hwmon2/") + file, "0\n");
  }
  const auto board = [](const char* fan) {
    return "Linux hwmon · nct6798 · " + std::string(fan) + "_input · RPM";
  };
  EXPECT_EQ(sample(MetricID::fan1RPM).source, "Linux hwmon · asus · fan1_input · RPM");
  EXPECT_EQ(sample(MetricID::fan2RPM), unavailable("Ventoinha 2 não existe nesta máquina"));
  tree->write("hwmon/hwmon2/fan2_input", "1100\n");
  source->reset();
  EXPECT_EQ(sample(MetricID::fan1RPM), valid(1100, board("fan2")));
  EXPECT_EQ(sample(MetricID::fan2RPM), valid(0, board("fan1")));
  tree->write("hwmon/hwmon2/fan5_input", "700\n");
  source->reset();
  EXPECT_EQ(sample(MetricID::fan1RPM), valid(1100, board("fan2")));
  EXPECT_EQ(sample(MetricID::fan2RPM), valid(700, board("fan5")));
}

TEST_F(LinuxSensorSourceTest, HasNoSpeedThatIsMissingNegativeOrImpossible) {
  useMachine("thinkpad-t440s");
  for (const char* value : {"", "abc\n", "-1\n", "65535\n", "99999999999999999999\n"}) {
    source->reset();
    tree->write("hwmon/hwmon4/fan1_input", value);
    EXPECT_EQ(sample(MetricID::fan1RPM),
              unavailable("Linux hwmon · RPM da ventoinha 1 indisponível"))
        << value;
  }
}

TEST_F(LinuxSensorSourceTest, ShowsTheSpeedOfAFanAboveItsMaximumWithoutAFailure) {
  useMachine("dell-xps-13-9370");
  tree->write("hwmon/hwmon5/fan1_input", "4901\n");
  for (int pass = 0; pass < 4; ++pass) {
    const SampleTable samples = source->sample(fan1);
    EXPECT_EQ(samples.find(MetricID::fan1RPM)->value, 4901);
    EXPECT_EQ(*samples.find(MetricID::fan1Percent),
              unavailable("Linux hwmon · dell_smm · máximo da ventoinha 1 inválido"));
  }
}

TEST_F(LinuxSensorSourceTest, HasNoPercentageByAnImpossibleMaximum) {
  useMachine("dell-xps-13-9370");
  for (const char* maximum : {"0\n", "-1\n"}) {
    source->reset();
    tree->write("hwmon/hwmon5/fan1_max", maximum);
    EXPECT_EQ(sample(MetricID::fan1Percent),
              unavailable("Linux hwmon · dell_smm · máximo da ventoinha 1 inválido"));
  }
  for (const char* maximum : {"", "abc\n", "99999999999999999999\n"}) {
    source->reset();
    tree->write("hwmon/hwmon5/fan1_max", maximum);
    EXPECT_EQ(sample(MetricID::fan1Percent),
              unavailable("Linux hwmon · dell_smm · máximo da ventoinha 1 não informado"));
  }
}

TEST_F(LinuxSensorSourceTest, ReadsMaximaOnceForEachOpening) {
  useMachine("dell-xps-13-9370");
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 50);
  tree->write("hwmon/hwmon5/fan1_max", "2450\n");
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 50);
  source->reset();
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 100);
}

TEST_F(LinuxSensorSourceTest, TakesTheMeanOfSeveralBatteriesOrNothing) {
  useMachine("thinkpad-t440s");
  tree->write("power_supply/BAT0/temp", "300\n");
  tree->write("power_supply/BAT1/temp", "351\n");
  EXPECT_EQ(sample(MetricID::batteryTemperature),
            valid(32.55, "Linux power_supply · média de 2 baterias internas · °C"));
  tree->write("power_supply/BAT1/temp", "");
  EXPECT_EQ(sample(MetricID::batteryTemperature),
            unavailable("Linux · apenas 1/2 sensores da bateria disponíveis"));
}

TEST_F(LinuxSensorSourceTest, NeverTakesTheThermometerOfAMouse) {
  useMachine("desktop-ryzen-5900x");
  tree->write("power_supply/hidpp_battery_0/temp", "250\n");
  EXPECT_EQ(sample(MetricID::batteryTemperature), unavailable("Bateria interna indisponível"));
}

TEST_F(LinuxSensorSourceTest, DoesNotHangOnPipesAndFoldersInPlaceOfAttributes) {
  useMachine("dell-xps-13-9370");
  tree->putPipe("hwmon/hwmon6/temp1_input");
  tree->putFolder("hwmon/hwmon6/temp2_input");
  tree->putPipe("hwmon/hwmon6/temp3_label");
  tree->putPipe("hwmon/hwmon5/fan1_input");
  tree->putFolder("hwmon/hwmon5/fan1_max");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(samples.find(MetricID::cpuTemperature)->source,
            "Linux · apenas 3/5 sensores de CPU disponíveis");
  EXPECT_EQ(samples.find(MetricID::fan1RPM)->quality, Quality::unavailable);
  EXPECT_EQ(samples.find(MetricID::fan2RPM)->value, 0);
}

}  // namespace
}  // namespace vantora
