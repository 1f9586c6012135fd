// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/sampling_coordinator_fixture.hpp"

namespace vantora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The sensors.

TEST_F(SamplingCoordinatorTest, PassesTheDemandToTheSensors) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::fan1RPM)}));
  EXPECT_THAT(sensors_->configured, ElementsAre(MetricSet{MetricID::cpuUsage, MetricID::fan1RPM}));
  EXPECT_EQ(sensors_->resets, 0);
  configure(showing(MetricID::cpuUsage));
  EXPECT_EQ(sensors_->configured.size(), 2U);
}

TEST_F(SamplingCoordinatorTest, ResetsTheSensorsWhenItIsConfiguredWhilePausedOrAsleep) {
  AppConfiguration configuration = showing(MetricID::fan1RPM);
  configuration.paused = true;
  configure(configuration);
  EXPECT_EQ(sensors_->resets, 1);
  configuration.paused = false;
  sleep();
  EXPECT_EQ(sensors_->resets, 2);
  configure(configuration);
  EXPECT_EQ(sensors_->resets, 3);
  EXPECT_THAT(sensors_->configured, IsEmpty());
  EXPECT_EQ(sensors_->samples, 0);
}

TEST_F(SamplingCoordinatorTest, ReplacesASensorSampleByTheNewOne) {
  configure(showing(MetricID::cpuTemperature));
  sensors_->celsius = 55;
  time_.advance(Seconds{2});
  EXPECT_EQ(last()[MetricID::cpuTemperature].value, 55.0);
}

// The battery.

TEST_F(SamplingCoordinatorTest, ReadsTheBatteryEveryThirtySecondsOnTicks) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::batteryPercent)}));
  EXPECT_EQ(battery_->reads, 1);
  time_.advance(Seconds{29.999});
  EXPECT_EQ(battery_->reads, 1);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(battery_->reads, 2);
  time_.advance(Seconds{29.999});
  EXPECT_EQ(battery_->reads, 2);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(battery_->reads, 3);
}

TEST_F(SamplingCoordinatorTest, CountsTheThirtySecondsFromTheLatestReading) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::batteryPercent)}));
  time_.advance(Seconds{11});
  coordinator_->refreshBattery();
  time_.advance(Seconds{0});
  EXPECT_EQ(battery_->reads, 2);
  time_.advance(Seconds{30});  // The tick at 40 s is the last before 11 + 30.
  EXPECT_EQ(battery_->reads, 2);
  time_.advance(Seconds{1});
  EXPECT_EQ(battery_->reads, 3);
}

TEST_F(SamplingCoordinatorTest, StoresOnlyTheBatteryMetricsThatAreShown) {
  battery_->next = {.percentage = MetricSample::valid(80, "a", {}),
                    .duration = MetricSample::valid(90, "b", {}),
                    .adapterWatts = MetricSample::valid(96, "c", {}),
                    .onAC = true,
                    .charging = true};
  configure(showing(MetricID::adapterWatts));
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::adapterWatts});
  EXPECT_EQ(last()[MetricID::adapterWatts].value, 96.0);
  EXPECT_TRUE(last().batteryOnAC);
  EXPECT_TRUE(last().batteryCharging);
  configure(showing({moduleOf(MetricID::batteryPercent, MetricID::batteryTime)}));
  EXPECT_EQ(last()[MetricID::batteryPercent].value, 80.0);
  EXPECT_EQ(last()[MetricID::batteryTime].value, 90.0);
}

TEST_F(SamplingCoordinatorTest, TakesAdapterAndChargingFromEveryReading) {
  battery_->next.onAC = true;
  battery_->next.charging = true;
  configure(showing(MetricID::batteryPercent));
  battery_->next.onAC = false;
  battery_->next.charging = false;
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_FALSE(last().batteryOnAC);
  EXPECT_FALSE(last().batteryCharging);
}

TEST_F(SamplingCoordinatorTest, TakesAWholePassWhenTheBatteryIsRefreshed) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::batteryPercent),
                     moduleOf(MetricID::upload, MetricID::fan1RPM)}));
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_EQ(published_.size(), 2U);
  EXPECT_EQ(ticks_->reads(), 2);
  EXPECT_EQ(network_->reads(), 2);
  EXPECT_EQ(battery_->reads, 2);
  EXPECT_EQ(sensors_->samples, 2);
}

TEST_F(SamplingCoordinatorTest, DoesNothingOnARefreshWhenNoBatteryMetricIsShown) {
  configure(showing(MetricID::cpuUsage));
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_EQ(battery_->reads, 0);
}

TEST_F(SamplingCoordinatorTest, RefreshesTheBatteryEvenWhileAsleep) {
  configure(showing(MetricID::batteryPercent));
  sleep();
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_EQ(battery_->reads, 2);
  EXPECT_EQ(published_.size(), 2U);
}

// Sleep.

TEST_F(SamplingCoordinatorTest, StopsWithoutPublishingBeforeSleep) {
  configure(showing(MetricID::cpuUsage));
  sleep();
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_EQ(sensors_->resets, 1);
  time_.advance(Seconds{60});
  EXPECT_EQ(ticks_->reads(), 1);
}

TEST_F(SamplingCoordinatorTest, StoresAndPublishesAConfigurationWhileAsleepButDoesNotSample) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::fan1RPM)}));
  sleep();
  configure(showing(MetricID::fan1RPM));
  EXPECT_EQ(published_.size(), 2U);
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::fan1RPM});
  EXPECT_EQ(quality(MetricID::fan1RPM), Quality::valid);
  EXPECT_EQ(sensors_->samples, 1);
  EXPECT_EQ(time_.pendingCount(), 0U);
  wake();
  EXPECT_EQ(sensors_->samples, 2);
  EXPECT_EQ(time_.pendingCount(), 1U);
}

TEST_F(SamplingCoordinatorTest, StartsAgainWithFreshBaselinesAfterWake) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::upload)}));
  time_.advance(Seconds{2});
  sleep();
  time_.jump(Seconds{1});
  wake();
  EXPECT_EQ(last()[MetricID::cpuUsage], MetricSample::waiting("Mach HOST_CPU_LOAD_INFO"));
  EXPECT_EQ(last()[MetricID::upload], MetricSample::waiting("en0 · primeira amostra de 64 bits"));
  time_.advance(Seconds{1.999});
  EXPECT_EQ(published_.size(), 3U);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(published_.size(), 4U);
}

TEST_F(SamplingCoordinatorTest, ForgetsTheBaselinesAfterAWakeThatNoSleepPreceded) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::upload)}));
  time_.advance(Seconds{2});
  wake();
  EXPECT_EQ(quality(MetricID::cpuUsage), Quality::waiting);
  EXPECT_EQ(last()[MetricID::upload], MetricSample::waiting("en0 · primeira amostra de 64 bits"));
  EXPECT_EQ(time_.pendingCount(), 1U);
}

TEST_F(SamplingCoordinatorTest, ReadsTheBatteryAtOnceAfterWake) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::batteryPercent)}));
  sleep();
  time_.jump(Seconds{1});
  wake();
  EXPECT_EQ(battery_->reads, 2);
}

TEST_F(SamplingCoordinatorTest, StaysPausedOverASleep) {
  AppConfiguration configuration = showing(MetricID::cpuUsage);
  configuration.paused = true;
  configure(configuration);
  sleep();
  wake();
  EXPECT_EQ(ticks_->reads(), 0);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SamplingCoordinatorTest, DoesNotLetAWakeUndoAConfigurationThatCameMeanwhile) {
  configure(showing(MetricID::cpuUsage));
  sleep();
  coordinator_->resetAfterWake();
  coordinator_->configure(showing(MetricID::upload));
  time_.runPosted();
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::upload});
  EXPECT_EQ(time_.pendingCount(), 1U);
}

TEST_F(SamplingCoordinatorTest, SaysThatItHasStoppedOnceNoTimerIsLeft) {
  configure(showing(MetricID::cpuUsage));
  EXPECT_EQ(time_.pendingCount(), 1U);
  int calls = 0;
  coordinator_->prepareForSleep([&] {
    ++calls;
    EXPECT_EQ(time_.pendingCount(), 0U);
  });
  EXPECT_EQ(calls, 0);
  time_.runPosted();
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace vantora::test
