// SPDX-License-Identifier: MIT
#include "sampling/apple/sensor_collector.hpp"

#include <gtest/gtest.h>

#include "support/scripted_smc.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::floatKey;
using test::uint8Key;

constexpr MetricSet allSensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};
constexpr MetricSet battery{MetricID::batteryTemperature};

const char* const cpuKeys[] = {"Tp00", "Tp04", "Tp08", "Tp0C", "Tp0G", "Tp0K",
                               "Tp0O", "Tp0R", "Tp0U", "Tp0X", "Tp0a", "Tp0d",
                               "Tp0g", "Tp0j", "Tp0m", "Tp0p", "Tp0u", "Tp0y"};

const MetricSample unreachable =
    MetricSample::unavailable("AppleSMC inacessível; nova tentativa em até 60 s");

class SensorCollector : public testing::Test {
 protected:
  SensorCollector() {
    controller.keys["TB1T"] = floatKey(30);
    controller.keys["TB2T"] = floatKey(31);
    float degrees = 40;
    for (const char* key : cpuKeys) {
      controller.keys[key] = floatKey(degrees += 1);
    }
    controller.keys["FNum"] = uint8Key(2);
    controller.keys["F0Mx"] = floatKey(6000);
    controller.keys["F1Mx"] = floatKey(5000);
    controller.keys["F0Ac"] = floatKey(1500);
    controller.keys["F1Ac"] = floatKey(0);
  }

  MetricSample sample(MetricID metric) {
    const SampleTable samples = collector.sample({metric});
    return samples.find(metric) != nullptr ? *samples.find(metric)
                                           : MetricSample::unavailable("no sample");
  }
  MetricSample valid(double value, std::string source) const {
    return MetricSample::valid(value, std::move(source), time.now());
  }

  test::VirtualTime time;
  test::ScriptedSMC controller;
  vantora::SensorCollector collector{controller.opener(), time};
};

TEST_F(SensorCollector, ReadsEverySensor) {
  const SampleTable samples = collector.sample(allSensors);
  EXPECT_EQ(samples.metrics(), allSensors);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature),
            valid(30.5, "AppleSMC · média de TB1T e TB2T da bateria · °C"));
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature),
            valid(58, "AppleSMC · maior valor de 18 sensores Tp* de CPU M5 · °C"));
  EXPECT_EQ(*samples.find(MetricID::fan1Percent),
            valid(25, "AppleSMC · 100 × F0Ac/F0Mx · % do RPM máximo"));
  EXPECT_EQ(*samples.find(MetricID::fan2Percent),
            valid(0, "AppleSMC · 100 × F1Ac/F1Mx · % do RPM máximo"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), valid(1500, "AppleSMC · F0Ac · RPM"));
  EXPECT_EQ(*samples.find(MetricID::fan2RPM), valid(0, "AppleSMC · F1Ac · RPM"));
}

TEST_F(SensorCollector, OpensNothingWhileNoSensorIsDemanded) {
  const MetricSet others{MetricID::none, MetricID::cpuUsage, MetricID::batteryPercent,
                         MetricID::inputWatts};
  EXPECT_TRUE(collector.sample(others).empty());
  collector.configure(others);
  collector.configure({});
  EXPECT_EQ(controller.openings, 0);
}

TEST_F(SensorCollector, OpensOnceForManyPasses) {
  collector.configure(battery);
  (void)collector.sample(battery);
  (void)collector.sample(battery);
  EXPECT_EQ(controller.openings, 1);
}

TEST_F(SensorCollector, ClosesWhenNoSensorIsDemandedAnyMore) {
  collector.configure(battery);
  EXPECT_EQ(controller.open, 1);
  collector.configure({MetricID::cpuUsage});
  EXPECT_EQ(controller.open, 0);
}

TEST_F(SensorCollector, KeepsTheControllerWhenSampledWithoutSensors) {
  collector.configure(battery);
  EXPECT_TRUE(collector.sample({MetricID::cpuUsage}).empty());
  EXPECT_EQ(controller.open, 1);
}

TEST_F(SensorCollector, ReadsNothingThatIsNotDemanded) {
  (void)collector.sample({MetricID::batteryTemperature, MetricID::cpuUsage});
  for (const auto& call : controller.calls) {
    EXPECT_TRUE(call.key == "TB1T" || call.key == "TB2T") << call.key;
  }
  EXPECT_EQ(controller.calls.size(), 4U);
}

TEST_F(SensorCollector, CostsOneCallAKeyAfterTheFirstPass) {
  (void)collector.sample(allSensors);
  controller.calls.clear();
  (void)collector.sample(allSensors);
  EXPECT_EQ(controller.calls.size(), 2U + 18U + 2U);
}

TEST_F(SensorCollector, WaitsSixtySecondsBeforeItOpensAgain) {
  controller.refuses = true;
  const SampleTable samples = collector.sample(allSensors);
  EXPECT_EQ(samples.metrics(), allSensors);
  for (const MetricID metric : allSensors) {
    EXPECT_EQ(*samples.find(metric), unreachable);
  }
  controller.refuses = false;

  time.advance(Seconds{59.999});
  EXPECT_EQ(sample(MetricID::batteryTemperature), unreachable);
  EXPECT_EQ(controller.openings, 1);
  time.advance(Seconds{0.001});
  EXPECT_EQ(sample(MetricID::batteryTemperature).value, 30.5);
  EXPECT_EQ(controller.openings, 2);
}

TEST_F(SensorCollector, DoesNotCountAClosedControllerAsAFailedPass) {
  controller.refuses = true;
  for (int pass = 0; pass < 5; ++pass) {
    EXPECT_EQ(sample(MetricID::batteryTemperature), unreachable);
  }
  controller.refuses = false;
  controller.keys.erase("TB2T");
  time.advance(Seconds{60});
  // Two failed passes leave it open: the five before them did not count.
  (void)collector.sample(battery);
  (void)collector.sample(battery);
  EXPECT_EQ(controller.open, 1);
}

TEST_F(SensorCollector, HasNoBatteryTemperatureFromOneSensorAlone) {
  for (const char* key : {"TB1T", "TB2T"}) {
    collector.reset();
    const test::SMCKey kept = controller.keys[key];
    controller.keys.erase(key);
    EXPECT_EQ(sample(MetricID::batteryTemperature),
              MetricSample::unavailable("AppleSMC · TB1T/TB2T da bateria indisponíveis"));
    controller.keys[key] = kept;
  }
}

TEST_F(SensorCollector, HasNoCpuTemperatureWhenOneSensorIsMissing) {
  controller.keys.erase("Tp0O");
  EXPECT_EQ(sample(MetricID::cpuTemperature),
            MetricSample::unavailable("AppleSMC · apenas 17/18 sensores Tp* de CPU disponíveis"));
}

TEST_F(SensorCollector, CountsTheCpuSensorsThatAnswered) {
  for (const char* key : {"Tp00", "Tp0y", "Tp0a", "Tp0d", "Tp0g", "Tp0j"}) {
    controller.keys.erase(key);
  }
  EXPECT_EQ(sample(MetricID::cpuTemperature).source,
            "AppleSMC · apenas 12/18 sensores Tp* de CPU disponíveis");
  EXPECT_EQ(controller.count("Tp0y", 9), 1) << "the whole list is read";
}

TEST_F(SensorCollector, FindsTheHottestCpuSensorWhereverItIs) {
  controller.keys["Tp00"] = floatKey(99);
  EXPECT_EQ(sample(MetricID::cpuTemperature).value, 99);
  for (const char* key : cpuKeys) {
    controller.keys[key] = floatKey(-5);
  }
  EXPECT_EQ(sample(MetricID::cpuTemperature).value, -5);
}

TEST_F(SensorCollector, SaysThatTheSecondFanOfAMacWithOneDoesNotExist) {
  controller.keys["FNum"] = uint8Key(1);
  for (int pass = 0; pass < 4; ++pass) {
    const SampleTable samples = collector.sample(allSensors);
    const auto absent = MetricSample::unavailable("Ventoinha 2 não existe neste Mac");
    EXPECT_EQ(*samples.find(MetricID::fan2RPM), absent);
    EXPECT_EQ(*samples.find(MetricID::fan2Percent), absent);
    EXPECT_EQ(samples.find(MetricID::fan1RPM)->value, 1500);
  }
  EXPECT_EQ(controller.open, 1) << "a fan that does not exist is no failure";
  EXPECT_EQ(controller.count("F1Mx", 9), 0);
  EXPECT_EQ(controller.count("F1Ac", 9), 0);
}

TEST_F(SensorCollector, HasNoFansWhereTheirNumberCannotBeRead) {
  controller.keys.erase("FNum");
  for (int pass = 0; pass < 4; ++pass) {
    EXPECT_EQ(sample(MetricID::fan1RPM),
              MetricSample::unavailable("Ventoinha 1 não existe neste Mac"));
  }
  EXPECT_EQ(controller.open, 1);
}

TEST_F(SensorCollector, HasNoFansOnAMacWithNone) {
  controller.keys["FNum"] = uint8Key(0);
  EXPECT_EQ(sample(MetricID::fan1Percent),
            MetricSample::unavailable("Ventoinha 1 não existe neste Mac"));
}

TEST_F(SensorCollector, ShowsTheSpeedOfAFanAboveItsMaximumButNoPercentage) {
  controller.keys["F0Ac"] = floatKey(6001);
  const SampleTable samples = collector.sample({MetricID::fan1Percent, MetricID::fan1RPM});
  EXPECT_EQ(*samples.find(MetricID::fan1Percent),
            MetricSample::unavailable("AppleSMC · máximo da ventoinha 1 inválido"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), valid(6001, "AppleSMC · F0Ac · RPM"));
}

TEST_F(SensorCollector, HasNoPercentageWithoutAMaximumAboveZero) {
  controller.keys["F0Mx"] = floatKey(0);
  controller.keys.erase("F1Mx");
  const SampleTable samples = collector.sample(allSensors);
  EXPECT_EQ(samples.find(MetricID::fan1Percent)->source,
            "AppleSMC · máximo da ventoinha 1 inválido");
  EXPECT_EQ(samples.find(MetricID::fan2Percent)->source,
            "AppleSMC · máximo da ventoinha 2 inválido");
}

TEST_F(SensorCollector, HasNoSpeedThatIsNegativeOrMissing) {
  controller.keys["F0Ac"] = floatKey(-1);
  controller.keys.erase("F1Ac");
  const SampleTable samples = collector.sample(allSensors);
  for (const MetricID metric : {MetricID::fan1RPM, MetricID::fan1Percent}) {
    EXPECT_EQ(*samples.find(metric),
              MetricSample::unavailable("AppleSMC · RPM da ventoinha 1 indisponível"));
  }
  for (const MetricID metric : {MetricID::fan2RPM, MetricID::fan2Percent}) {
    EXPECT_EQ(*samples.find(metric),
              MetricSample::unavailable("AppleSMC · RPM da ventoinha 2 indisponível"));
  }
}

TEST_F(SensorCollector, ReadsEachFanOncePerPassEvenWhenItFails) {
  (void)collector.sample({MetricID::fan1RPM, MetricID::fan1Percent});
  EXPECT_EQ(controller.count("F0Ac", 5), 1);
  controller.keys["F0Ac"].readFails = true;
  (void)collector.sample({MetricID::fan1RPM, MetricID::fan1Percent});
  EXPECT_EQ(controller.count("F0Ac", 5), 2);
}

TEST_F(SensorCollector, ReadsNumberAndMaximaOncePerOpening) {
  (void)collector.sample(allSensors);
  (void)collector.sample(allSensors);
  for (const char* key : {"FNum", "F0Mx", "F1Mx"}) {
    EXPECT_EQ(controller.count(key, 5), 1) << key;
  }
}

TEST_F(SensorCollector, FindsAFanThatIsAddedLaterOnlyAfterAReset) {
  (void)collector.sample(battery);
  EXPECT_EQ(sample(MetricID::fan1RPM),
            MetricSample::unavailable("Ventoinha 1 não existe neste Mac"));
  collector.reset();
  EXPECT_EQ(sample(MetricID::fan1RPM).value, 1500);
}

TEST_F(SensorCollector, ClosesAfterThreeFailedPassesAndWaitsSixtySeconds) {
  controller.keys.erase("TB2T");
  const auto missing = MetricSample::unavailable("AppleSMC · TB1T/TB2T da bateria indisponíveis");
  EXPECT_EQ(sample(MetricID::batteryTemperature), missing);
  EXPECT_EQ(sample(MetricID::batteryTemperature), missing);
  EXPECT_EQ(controller.open, 1);
  EXPECT_EQ(sample(MetricID::batteryTemperature), missing);
  EXPECT_EQ(controller.open, 0);

  EXPECT_EQ(sample(MetricID::batteryTemperature), unreachable);
  time.advance(Seconds{59.999});
  EXPECT_EQ(sample(MetricID::batteryTemperature), unreachable);
  controller.keys["TB2T"] = floatKey(31);
  time.advance(Seconds{0.001});
  EXPECT_EQ(sample(MetricID::batteryTemperature).value, 30.5);
  EXPECT_EQ(controller.openings, 2);
}

TEST_F(SensorCollector, CountsAFreshThreeFailuresAfterTheBackOff) {
  controller.keys.erase("TB2T");
  for (int pass = 0; pass < 3; ++pass) {
    (void)collector.sample(battery);
  }
  time.advance(Seconds{60});
  (void)collector.sample(battery);
  (void)collector.sample(battery);
  EXPECT_EQ(controller.open, 1);
  (void)collector.sample(battery);
  EXPECT_EQ(controller.open, 0);
}

TEST_F(SensorCollector, CountsOnlyFailedPassesInARow) {
  for (int round = 0; round < 3; ++round) {
    controller.keys["TB2T"].readFails = true;
    (void)collector.sample(battery);
    (void)collector.sample(battery);
    controller.keys["TB2T"].readFails = false;
    EXPECT_EQ(sample(MetricID::batteryTemperature).value, 30.5);
  }
  EXPECT_EQ(controller.openings, 1);
}

TEST_F(SensorCollector, CountsAPassWithManyFailuresOnce) {
  controller.keys.erase("TB1T");
  controller.keys.erase("Tp00");
  controller.keys.erase("F0Ac");
  (void)collector.sample(allSensors);
  (void)collector.sample(allSensors);
  EXPECT_EQ(controller.open, 1);
}

TEST_F(SensorCollector, CountsEveryKindOfFailure) {
  const auto closesAfterThree = [this](MetricID metric) {
    collector.reset();
    for (int pass = 0; pass < 3; ++pass) {
      (void)collector.sample({metric});
    }
    return controller.open == 0;
  };
  for (const MetricID metric : allSensors) {
    EXPECT_FALSE(closesAfterThree(metric)) << id(metric);
  }
  controller.keys["F0Ac"] = floatKey(9000);
  EXPECT_TRUE(closesAfterThree(MetricID::fan1Percent));
  EXPECT_FALSE(closesAfterThree(MetricID::fan1RPM));
  controller.keys.erase("F1Ac");
  EXPECT_TRUE(closesAfterThree(MetricID::fan2RPM));
  controller.keys.erase("Tp0y");
  EXPECT_TRUE(closesAfterThree(MetricID::cpuTemperature));
}

TEST_F(SensorCollector, ForgetsMaximaWhenItCloses) {
  controller.keys["F1Ac"].readFails = true;
  for (int pass = 0; pass < 3; ++pass) {
    (void)collector.sample({MetricID::fan1Percent, MetricID::fan2RPM});
  }
  controller.keys["F0Mx"] = floatKey(3000);
  time.advance(Seconds{60});
  EXPECT_EQ(sample(MetricID::fan1Percent).value, 50);
}

TEST_F(SensorCollector, ForgetsTheBackOffWithAReset) {
  controller.refuses = true;
  (void)collector.sample(battery);
  controller.refuses = false;
  collector.reset();
  EXPECT_EQ(sample(MetricID::batteryTemperature).value, 30.5);
}

TEST_F(SensorCollector, ForgetsTheBackOffWhenNoSensorIsDemanded) {
  controller.refuses = true;
  (void)collector.sample(battery);
  controller.refuses = false;
  collector.configure({MetricID::cpuUsage});
  EXPECT_EQ(sample(MetricID::batteryTemperature).value, 30.5);
}

TEST_F(SensorCollector, ForgetsFailedPassesWithAReset) {
  controller.keys.erase("TB2T");
  (void)collector.sample(battery);
  (void)collector.sample(battery);
  collector.reset();
  (void)collector.sample(battery);
  (void)collector.sample(battery);
  EXPECT_EQ(controller.open, 1);
}

TEST_F(SensorCollector, ReopensInTheSameStateAfterAReset) {
  (void)collector.sample(allSensors);
  collector.reset();
  EXPECT_EQ(controller.open, 0);
  EXPECT_EQ(collector.sample(allSensors).metrics(), allSensors);
  EXPECT_EQ(controller.openings, 2);
}

}  // namespace
}  // namespace vantora
