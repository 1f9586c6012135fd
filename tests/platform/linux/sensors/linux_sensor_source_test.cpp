// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/linux_sensor_source.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "platform/linux/sensors/watched_calls.hpp"
#include "support/sysfs_tree.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

constexpr MetricSet allSensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};
constexpr MetricSet cpu{MetricID::cpuTemperature};
constexpr MetricSet battery{MetricID::batteryTemperature};
constexpr MetricSet fan1{MetricID::fan1RPM, MetricID::fan1Percent};

MetricSample unavailable(std::string source) {
  return MetricSample::unavailable(std::move(source));
}

class LinuxSensorSource : public testing::Test {
 protected:
  void useMachine(const std::string& machine) {
    tree = std::make_unique<test::SysfsTree>(machine);
    source = std::make_unique<vantora::LinuxSensorSource>(
        time, vantora::LinuxSensorSource::Roots{tree->hwmon(), tree->powerSupply()});
  }
  MetricSample sample(MetricID metric) {
    const SampleTable samples = source->sample({metric});
    EXPECT_EQ(samples.metrics(), MetricSet{metric});
    return samples.find(metric) != nullptr ? *samples.find(metric) : unavailable("no sample");
  }
  MetricSample valid(double value, std::string from) const {
    return MetricSample::valid(value, std::move(from), time.now());
  }
  MetricSample cpuTemperature() { return sample(MetricID::cpuTemperature); }

  test::VirtualTime time;
  std::unique_ptr<test::SysfsTree> tree;
  std::unique_ptr<vantora::LinuxSensorSource> source;
  test::WatchedCalls calls;
};

// Machines.

TEST_F(LinuxSensorSource, ReadsAThinkPad) {
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

TEST_F(LinuxSensorSource, ReadsTheFansOfAnXpsWithTheirMaxima) {
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

TEST_F(LinuxSensorSource, ReadsAFrameworkWithAmd) {
  useMachine("framework-13-amd");
  EXPECT_EQ(cpuTemperature(), valid(48.5, "Linux hwmon · sensor de CPU (k10temp) · °C"));
  EXPECT_EQ(sample(MetricID::fan1RPM), valid(0, "Linux hwmon · cros_ec · fan1_input · RPM"));
}

TEST_F(LinuxSensorSource, ReadsTheBatteryOfAMacBookAir) {
  useMachine("macbook-air-m2-asahi");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            valid(30.4, "Linux power_supply · temperatura da bateria interna · °C"));
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            unavailable("Linux hwmon · nenhum sensor de CPU nesta máquina"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), unavailable("Ventoinha 1 não existe nesta máquina"));
}

TEST_F(LinuxSensorSource, TakesTheBatteryThermometerOfApplesController) {
  useMachine("macbook-pro-2015");
  const SampleTable samples = source->sample(allSensors);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            valid(33.5, "Linux hwmon · sensor da bateria (applesmc) · °C"));
  EXPECT_NEAR(samples.find(MetricID::fan1Percent)->value.value(), 2156.0 * 100 / 6156, 1e-9);
  EXPECT_NEAR(samples.find(MetricID::fan2Percent)->value.value(), 1998.0 * 100 / 5700, 1e-9);
}

TEST_F(LinuxSensorSource, ReadsRaspberryPis) {
  useMachine("raspberry-pi-4");
  EXPECT_EQ(cpuTemperature(), valid(47.712, "Linux hwmon · sensor de CPU (cpu_thermal) · °C"));
  EXPECT_EQ(sample(MetricID::fan1Percent), unavailable("Ventoinha 1 não existe nesta máquina"));
  EXPECT_EQ(sample(MetricID::batteryTemperature), unavailable("Bateria interna indisponível"));
  useMachine("raspberry-pi-5");
  EXPECT_EQ(cpuTemperature().value, 52.35);
  EXPECT_EQ(sample(MetricID::fan1RPM), valid(2871, "Linux hwmon · pwmfan · fan1_input · RPM"));
}

TEST_F(LinuxSensorSource, TakesTheBoardsFansAndNeverTheGraphicsCards) {
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

TEST_F(LinuxSensorSource, LeavesOutTheOffsetOfAThreadripper) {
  useMachine("desktop-threadripper-1950x");
  EXPECT_EQ(cpuTemperature(),
            valid(41.5, "Linux hwmon · maior valor de 2 sensores de CPU (k10temp) · °C"));
}

TEST_F(LinuxSensorSource, TakesTheHottestOfTwoProcessors) {
  useMachine("server-with-ups");
  EXPECT_EQ(cpuTemperature().value, 58);
}

TEST_F(LinuxSensorSource, IsQuietOnAMachineWithoutAnySensor) {
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

// What a pass costs.

TEST_F(LinuxSensorSource, TouchesNothingWhileNoSensorIsDemanded) {
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

TEST_F(LinuxSensorSource, CostsOneReadForEachValueAfterTheFirstPass) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  calls.clear();
  (void)source->sample(allSensors);
  EXPECT_EQ(calls.opens, 0);
  EXPECT_EQ(calls.reads, 5 + 2);  // five cores and package, two fans; no battery sensor
}

TEST_F(LinuxSensorSource, ReadsNothingForMetricsThatAreNotDemanded) {
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

TEST_F(LinuxSensorSource, OpensWhenConfiguredSoThatThePassOnlyReads) {
  useMachine("dell-xps-13-9370");
  source->configure(cpu);
  calls.clear();
  EXPECT_EQ(cpuTemperature().value, 52);
  EXPECT_EQ(calls.opens, 0);
}

TEST_F(LinuxSensorSource, LetsGoOfEverythingWhenNoSensorIsDemandedAnyMore) {
  useMachine("raspberry-pi-4");
  (void)cpuTemperature();
  source->configure({MetricID::cpuUsage});
  calls.clear();
  EXPECT_EQ(cpuTemperature().value, 47.712);
  EXPECT_GT(calls.opens, 0);
}

TEST_F(LinuxSensorSource, SeesNewValuesInFilesThatItKeepsOpen) {
  useMachine("raspberry-pi-4");
  EXPECT_EQ(cpuTemperature().value, 47.712);
  tree->write("hwmon/hwmon0/temp1_input", "51607\n");
  EXPECT_EQ(cpuTemperature().value, 51.607);
}

// Failures.

TEST_F(LinuxSensorSource, HasNoMaximumOfSomeOfTheSensors) {
  useMachine("dell-xps-13-9370");
  (void)cpuTemperature();
  calls.fail(tree->path("hwmon/hwmon6/temp3_input"), EAGAIN);
  EXPECT_EQ(cpuTemperature(), unavailable("Linux · apenas 4/5 sensores de CPU disponíveis"));
  calls.mend();
  EXPECT_EQ(cpuTemperature().value, 52);
}

TEST_F(LinuxSensorSource, BelievesNoTemperatureThatCannotBe) {
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

TEST_F(LinuxSensorSource, RestsSixtySecondsAfterThreeFailedPassesInARow) {
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

TEST_F(LinuxSensorSource, CountsOnlyFailedPassesInARow) {
  useMachine("raspberry-pi-4");
  for (int round = 0; round < 3; ++round) {
    tree->write("hwmon/hwmon0/temp1_input", "");
    (void)cpuTemperature();
    (void)cpuTemperature();
    tree->write("hwmon/hwmon0/temp1_input", "47712\n");
    EXPECT_EQ(cpuTemperature().value, 47.712);
  }
}

TEST_F(LinuxSensorSource, LetsOneGroupRestWithoutTheOthers) {
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

TEST_F(LinuxSensorSource, LetsOneFanRestWithoutTheOther) {
  useMachine("dell-xps-13-9370");
  (void)source->sample(allSensors);
  calls.fail(tree->path("hwmon/hwmon5/fan1_input"), EIO);
  for (int pass = 0; pass < 6; ++pass) {
    EXPECT_EQ(source->sample(allSensors).find(MetricID::fan2RPM)->value, 0) << pass;
  }
}

// An ASUS desktop: its controller announces a fan that is not there, and the fans that turn
// are behind the Super I/O chip, on whichever of its channels.
TEST_F(LinuxSensorSource, TakesFansThatTurnBeforeThoseThatDoNot) {
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

TEST_F(LinuxSensorSource, HasNoSpeedThatIsMissingNegativeOrImpossible) {
  useMachine("thinkpad-t440s");
  for (const char* value : {"", "abc\n", "-1\n", "65535\n", "99999999999999999999\n"}) {
    source->reset();
    tree->write("hwmon/hwmon4/fan1_input", value);
    EXPECT_EQ(sample(MetricID::fan1RPM),
              unavailable("Linux hwmon · RPM da ventoinha 1 indisponível"))
        << value;
  }
}

TEST_F(LinuxSensorSource, ShowsTheSpeedOfAFanAboveItsMaximumWithoutAFailure) {
  useMachine("dell-xps-13-9370");
  tree->write("hwmon/hwmon5/fan1_input", "4901\n");
  for (int pass = 0; pass < 4; ++pass) {
    const SampleTable samples = source->sample(fan1);
    EXPECT_EQ(samples.find(MetricID::fan1RPM)->value, 4901);
    EXPECT_EQ(*samples.find(MetricID::fan1Percent),
              unavailable("Linux hwmon · dell_smm · máximo da ventoinha 1 inválido"));
  }
}

TEST_F(LinuxSensorSource, HasNoPercentageByAnImpossibleMaximum) {
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

TEST_F(LinuxSensorSource, ReadsMaximaOnceForEachOpening) {
  useMachine("dell-xps-13-9370");
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 50);
  tree->write("hwmon/hwmon5/fan1_max", "2450\n");
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 50);
  source->reset();
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 100);
}

TEST_F(LinuxSensorSource, TakesTheMeanOfSeveralBatteriesOrNothing) {
  useMachine("thinkpad-t440s");
  tree->write("power_supply/BAT0/temp", "300\n");
  tree->write("power_supply/BAT1/temp", "351\n");
  EXPECT_EQ(sample(MetricID::batteryTemperature),
            valid(32.55, "Linux power_supply · média de 2 baterias internas · °C"));
  tree->write("power_supply/BAT1/temp", "");
  EXPECT_EQ(sample(MetricID::batteryTemperature),
            unavailable("Linux · apenas 1/2 sensores da bateria disponíveis"));
}

TEST_F(LinuxSensorSource, NeverTakesTheThermometerOfAMouse) {
  useMachine("desktop-ryzen-5900x");
  tree->write("power_supply/hidpp_battery_0/temp", "250\n");
  EXPECT_EQ(sample(MetricID::batteryTemperature), unavailable("Bateria interna indisponível"));
}

TEST_F(LinuxSensorSource, DoesNotHangOnPipesAndFoldersInPlaceOfAttributes) {
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

// Chips that come and go.

TEST_F(LinuxSensorSource, LooksAgainAtOnceWhenADeviceIsGone) {
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

TEST_F(LinuxSensorSource, SaysSoWhenAChipIsGoneForGood) {
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

TEST_F(LinuxSensorSource, CountsADeviceThatStaysGoneAsAFailure) {
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

TEST_F(LinuxSensorSource, LooksForAnAbsentChipEverySixtySeconds) {
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

TEST_F(LinuxSensorSource, NoticesAChipThatAppearsBesideTheOthers) {
  useMachine("server-with-ups");
  tree->rename("hwmon/hwmon1", "later");
  EXPECT_EQ(cpuTemperature().value, 54);
  tree->rename("later", "hwmon/hwmon1");
  time.advance(Seconds{59.999});
  EXPECT_EQ(cpuTemperature().value, 54);
  time.advance(Seconds{0.001});
  EXPECT_EQ(cpuTemperature().value, 58);
}

TEST_F(LinuxSensorSource, LooksNoFurtherWhileTheChipsStayTheSame) {
  useMachine("server-with-ups");
  (void)cpuTemperature();
  time.advance(Seconds{60});
  calls.clear();
  (void)cpuTemperature();
  EXPECT_EQ(calls.opens, 1);  // the listing
}

TEST_F(LinuxSensorSource, SurvivesAChipThatDisappearsBetweenListingAndReading) {
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

TEST_F(LinuxSensorSource, ForgetsEverythingWithAReset) {
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
