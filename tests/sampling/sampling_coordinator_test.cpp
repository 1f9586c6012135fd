// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sampling/sampling_coordinator_fixture.hpp"

namespace vantora::test {
namespace {

using testing::IsEmpty;

// Configuring.

TEST_F(SamplingCoordinatorTest, DoesNothingBeforeItIsConfigured) {
  time_.advance(Seconds{60});
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SamplingCoordinatorTest, OnlySchedulesItsWork) {
  coordinator_->configure(showing(MetricID::cpuUsage));
  coordinator_->refreshBattery();
  coordinator_->prepareForSleep();
  coordinator_->resetAfterWake();
  EXPECT_EQ(ticks_->reads(), 0);
  EXPECT_EQ(time_.pendingCount(), 4U);
}

TEST_F(SamplingCoordinatorTest, TakesAPassAtOnceAndPublishesIt) {
  configure(showing(MetricID::cpuUsage));
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(last()[MetricID::cpuUsage], MetricSample::waiting("Mach HOST_CPU_LOAD_INFO"));
}

TEST_F(SamplingCoordinatorTest, TakesAPassEveryInterval) {
  AppConfiguration configuration = showing(MetricID::cpuUsage);
  for (const int interval : {1, 2}) {
    configuration.intervalSeconds = interval;
    configure(configuration);
    const std::size_t before = published_.size();
    time_.advance(Seconds{interval - 0.001});
    EXPECT_EQ(published_.size(), before);
    time_.advance(Seconds{0.001});
    EXPECT_EQ(published_.size(), before + 1);
    time_.advance(Seconds{interval - 0.001});
    EXPECT_EQ(published_.size(), before + 1);
    time_.advance(Seconds{0.001});
    EXPECT_EQ(published_.size(), before + 2);
  }
}

TEST_F(SamplingCoordinatorTest, PublishesOnlyTheTicksThatAreNews) {
  bool areNews = false;
  int asked = 0;
  coordinator_->isNews = [&](const MetricSnapshot&) {
    ++asked;
    return areNews;
  };
  configure(showing(MetricID::cpuUsage));
  EXPECT_EQ(published_.size(), 1U);
  time_.advance(Seconds{4});
  EXPECT_EQ(published_.size(), 1U);
  areNews = true;
  time_.advance(Seconds{2});
  EXPECT_EQ(published_.size(), 2U);
  EXPECT_EQ(asked, 4);
}

TEST_F(SamplingCoordinatorTest, PublishesAChangeAndAPowerSourceThatAreNoNews) {
  coordinator_->isNews = [](const MetricSnapshot&) { return false; };
  configure(showing(MetricID::batteryPercent));
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_EQ(published_.size(), 2U);
  AppConfiguration paused = showing(MetricID::batteryPercent);
  paused.paused = true;
  configure(paused);
  EXPECT_EQ(published_.size(), 3U);
}

TEST_F(SamplingCoordinatorTest, LetsTheSystemRunItsTimerATenthOfASecondLate) {
  configure(showing(MetricID::cpuUsage));
  EXPECT_EQ(queue_->lastLeeway(), Seconds{0.1});
}

TEST_F(SamplingCoordinatorTest, FillsInCPUAndNetworkFromTheSecondPassOn) {
  configure(
      showing({moduleOf(MetricID::cpuUsage), moduleOf(MetricID::upload, MetricID::download)}));
  ticks_->set(1010, 9030);
  network_->setCounters("en0", 400, 60);
  time_.advance(Seconds{2});
  EXPECT_EQ(last()[MetricID::cpuUsage].value, 25.0);
  EXPECT_EQ(last()[MetricID::download].value, 200.0);
  EXPECT_EQ(last()[MetricID::upload].value, 30.0);
  EXPECT_EQ(last().networkName, "en0");
}

TEST_F(SamplingCoordinatorTest, SamplesTheDefaultLayout) {
  configure(AppConfiguration{});
  EXPECT_EQ(ticks_->reads(), 1);
  EXPECT_EQ(network_->reads(), 1);
  EXPECT_EQ(battery_->reads, 1);
  EXPECT_EQ(sensors_->samples, 1);
  EXPECT_EQ(last().samples.metrics(), AppConfiguration{}.demand());
}

TEST_F(SamplingCoordinatorTest, TakesOnePassAndStartsNoTimerForQuotaMetricsAlone) {
  configure(showing({moduleOf(MetricID::codexWeeklyPercent, MetricID::claudeSessionPercent)}));
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_EQ(ticks_->reads() + network_->reads() + battery_->reads + sensors_->samples, 0);
}

TEST_F(SamplingCoordinatorTest, TakesOnePassAndStartsNoTimerForBatteryMetricsAlone) {
  battery_->next.percentage = MetricSample::valid(80, "bateria", {});
  configure(showing({moduleOf(MetricID::batteryPercent, MetricID::batteryTime)}));
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_EQ(last()[MetricID::batteryPercent].value, 80.0);
  battery_->next.percentage = MetricSample::valid(79, "bateria", {});
  time_.advance(Seconds{3600});
  EXPECT_EQ(published_.size(), 1U);
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_EQ(last()[MetricID::batteryPercent].value, 79.0);
}

TEST_F(SamplingCoordinatorTest, StartsATimerForSensorsAlone) {
  configure(showing(MetricID::fan1RPM));
  EXPECT_EQ(time_.pendingCount(), 1U);
  time_.advance(Seconds{2});
  EXPECT_EQ(sensors_->samples, 2);
}

TEST_F(SamplingCoordinatorTest, OnlyPublishesWhenNothingIsShown) {
  configure(showing(MetricID::cpuUsage));
  configure(showing(MetricID::none));
  EXPECT_EQ(published_.size(), 2U);
  EXPECT_TRUE(last().samples.empty());
  EXPECT_EQ(ticks_->reads(), 1);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SamplingCoordinatorTest, TakesAPassForAMetricThatNoSourceProduces) {
  configure(showing(MetricID::inputWatts));
  EXPECT_EQ(published_.size(), 1U);
  EXPECT_TRUE(last().samples.empty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SamplingCoordinatorTest, KnowsWhichLayoutsStartATimer) {
  for (const MetricID metric : allMetrics) {
    const auto owner = family(metric);
    const bool expected = owner == MetricFamily::cpu || owner == MetricFamily::network ||
                          owner == MetricFamily::sensors;
    AppConfiguration configuration = showing(metric);
    EXPECT_EQ(SamplingCoordinator::startsTimer(configuration), expected) << id(metric);
    configure(configuration);
    EXPECT_EQ(time_.pendingCount(), expected ? 1U : 0U) << id(metric);
    configuration.paused = true;
    EXPECT_FALSE(SamplingCoordinator::startsTimer(configuration)) << id(metric);
  }
}

TEST_F(SamplingCoordinatorTest, RemovesTheSampleOfAMetricThatIsNoLongerShown) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::fan1RPM)}));
  EXPECT_EQ(last().samples.metrics(), (MetricSet{MetricID::cpuUsage, MetricID::fan1RPM}));
  configure(showing(MetricID::cpuUsage));
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::cpuUsage});
}

TEST_F(SamplingCoordinatorTest, IgnoresADisabledModule) {
  AppConfiguration configuration =
      showing({moduleOf(MetricID::cpuUsage), moduleOf(MetricID::upload)});
  configuration.modules[1].enabled = false;
  configure(configuration);
  EXPECT_EQ(network_->reads(), 0);
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::cpuUsage});
}

// Baselines.

TEST_F(SamplingCoordinatorTest, KeepsTheBaselinesWhenOnlyTheLayoutChanges) {
  configure(showing({moduleOf(MetricID::cpuUsage), moduleOf(MetricID::upload)}));
  AppConfiguration rearranged =
      showing({moduleOf(MetricID::download), moduleOf(MetricID::cpuUsage)});
  rearranged.gap = 9;
  ticks_->set(1001, 9001);
  time_.advance(Seconds{1});
  configure(rearranged);
  EXPECT_EQ(quality(MetricID::cpuUsage), Quality::valid);
  EXPECT_EQ(quality(MetricID::download), Quality::valid);
}

TEST_F(SamplingCoordinatorTest, RestartsTheTimerAndForcesAPassWheneverItIsConfigured) {
  const AppConfiguration configuration =
      showing({moduleOf(MetricID::cpuUsage), moduleOf(MetricID::batteryPercent)});
  configure(configuration);
  time_.advance(Seconds{1.5});
  configure(configuration);
  EXPECT_EQ(battery_->reads, 2);
  EXPECT_EQ(published_.size(), 2U);
  EXPECT_EQ(time_.pendingCount(), 1U);
  time_.advance(Seconds{1.999});
  EXPECT_EQ(published_.size(), 2U);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(published_.size(), 3U);
}

TEST_F(SamplingCoordinatorTest, ForgetsTheBaselinesWhenTheIntervalChanges) {
  AppConfiguration configuration = showing({moduleOf(MetricID::cpuUsage, MetricID::upload)});
  configure(configuration);
  time_.advance(Seconds{2});
  configuration.intervalSeconds = 1;
  configure(configuration);
  EXPECT_EQ(last()[MetricID::cpuUsage], MetricSample::waiting("Mach HOST_CPU_LOAD_INFO"));
  EXPECT_EQ(last()[MetricID::upload], MetricSample::waiting("en0 · primeira amostra de 64 bits"));
}

TEST_F(SamplingCoordinatorTest, ForgetsTheBaselinesWhenTheFamiliesChange) {
  configure(showing({moduleOf(MetricID::cpuUsage, MetricID::upload)}));
  time_.advance(Seconds{2});
  configure(showing(
      {moduleOf(MetricID::cpuUsage, MetricID::upload), moduleOf(MetricID::claudeSessionPercent)}));
  EXPECT_EQ(last()[MetricID::cpuUsage], MetricSample::waiting("Mach HOST_CPU_LOAD_INFO"));
  EXPECT_EQ(last()[MetricID::upload], MetricSample::waiting("en0 · primeira amostra de 64 bits"));
}

TEST_F(SamplingCoordinatorTest, ForgetsOnlyTheNetworkBaselineWhenTheInterfaceChanges) {
  AppConfiguration configuration = showing({moduleOf(MetricID::cpuUsage, MetricID::upload)});
  configure(configuration);
  ticks_->set(1001, 9001);
  time_.advance(Seconds{2});
  ticks_->set(1002, 9002);
  configuration.networkInterface = "en0";
  configure(configuration);
  EXPECT_EQ(quality(MetricID::cpuUsage), Quality::valid);
  EXPECT_EQ(last()[MetricID::upload], MetricSample::waiting("en0 · primeira amostra de 64 bits"));
  time_.advance(Seconds{2});
  EXPECT_EQ(quality(MetricID::upload), Quality::valid);
}

TEST_F(SamplingCoordinatorTest, EndsTheNetworkBackOffWhenTheInterfaceChanges) {
  AppConfiguration configuration = showing(MetricID::upload);
  network_->failRead("sysctl NET_RT_IFLIST2 falhou");
  configure(configuration);
  network_->recover();
  configuration.networkInterface = "en1";
  configure(configuration);
  EXPECT_EQ(last().networkName, "en1");
}

TEST_F(SamplingCoordinatorTest, DistinguishesAnAbsentInterfaceFromAnEmptyOne) {
  AppConfiguration configuration = showing(MetricID::upload);
  configure(configuration);
  time_.advance(Seconds{2});
  configuration.networkInterface = "";
  configure(configuration);
  EXPECT_EQ(quality(MetricID::upload), Quality::waiting);
}

// Pausing.

TEST_F(SamplingCoordinatorTest, KeepsTheShownSamplesAsStaleWhenItIsPaused) {
  AppConfiguration configuration =
      showing({moduleOf(MetricID::cpuUsage, MetricID::fan1RPM), moduleOf(MetricID::upload)});
  configure(configuration);
  ticks_->set(1010, 9010);
  time_.advance(Seconds{2});
  const MetricSnapshot before = last();
  published_.clear();

  configuration.paused = true;
  configuration.modules.pop_back();
  configure(configuration);
  ASSERT_EQ(published_.size(), 1U);
  EXPECT_EQ(last().samples.metrics(), (MetricSet{MetricID::cpuUsage, MetricID::fan1RPM}));
  for (const MetricID metric : last().samples.metrics()) {
    MetricSample expected = before[metric];
    expected.quality = Quality::stale;
    EXPECT_EQ(last()[metric], expected) << id(metric);
  }
  EXPECT_EQ(time_.pendingCount(), 0U);
  time_.advance(Seconds{60});
  EXPECT_EQ(published_.size(), 1U);
}

TEST_F(SamplingCoordinatorTest, WaitsForANewBaseAfterAPause) {
  AppConfiguration configuration = showing({moduleOf(MetricID::cpuUsage, MetricID::upload)});
  configure(configuration);
  time_.advance(Seconds{2});
  configuration.paused = true;
  configure(configuration);
  configuration.paused = false;
  configure(configuration);
  EXPECT_EQ(last()[MetricID::cpuUsage], MetricSample::waiting("Mach HOST_CPU_LOAD_INFO"));
  EXPECT_EQ(last()[MetricID::upload], MetricSample::waiting("en0 · primeira amostra de 64 bits"));
}

TEST_F(SamplingCoordinatorTest, DoesNotReadTheBatteryOnRequestWhilePaused) {
  AppConfiguration configuration = showing(MetricID::batteryPercent);
  configuration.paused = true;
  configure(configuration);
  published_.clear();
  coordinator_->refreshBattery();
  time_.runPosted();
  EXPECT_EQ(battery_->reads, 0);
  EXPECT_THAT(published_, IsEmpty());
}

// Publishing.

TEST_F(SamplingCoordinatorTest, ReadsNothingForAMetricThatIsNotShown) {
  for (const MetricID metric : allMetrics) {
    SCOPED_TRACE(id(metric));
    const int ticks = ticks_->reads();
    const int network = network_->reads() + network_->counterReads() + network_->lookUps();
    const int battery = battery_->reads;
    const int sensors = sensors_->samples;
    configure(showing(metric));
    time_.advance(Seconds{60});
    const auto owner = family(metric);
    EXPECT_EQ(ticks_->reads() > ticks, owner == MetricFamily::cpu);
    EXPECT_EQ(network_->reads() + network_->counterReads() + network_->lookUps() > network,
              owner == MetricFamily::network);
    EXPECT_EQ(battery_->reads > battery, owner == MetricFamily::battery);
    EXPECT_EQ(sensors_->samples > sensors, owner == MetricFamily::sensors);
  }
}

TEST_F(SamplingCoordinatorTest, StoresASampleForEveryShownMetricThatASourceProduces) {
  for (const MetricID metric : allMetrics) {
    configure(showing(metric));
    const auto owner = family(metric);
    const bool isSampled = owner && owner != MetricFamily::codex && owner != MetricFamily::claude;
    EXPECT_EQ(last().samples.metrics(), isSampled ? MetricSet{metric} : MetricSet{}) << id(metric);
  }
}

TEST_F(SamplingCoordinatorTest, StoresOnlyTheDirectionThatIsShown) {
  configure(showing(MetricID::upload));
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::upload});
  configure(showing(MetricID::download));
  EXPECT_EQ(last().samples.metrics(), MetricSet{MetricID::download});
}

TEST_F(SamplingCoordinatorTest, ClearsTheNetworkNameWhenNoInterfaceIsRead) {
  configure(showing(MetricID::upload));
  EXPECT_EQ(last().networkName, "en0");
  network_->remove("en0");
  network_->remove("en1");
  time_.advance(Seconds{2});
  EXPECT_EQ(last().networkName, std::nullopt);
  EXPECT_EQ(last()[MetricID::upload].source, "Sem interface física ativa");
}

TEST_F(SamplingCoordinatorTest, PublishesFailuresLikeAnyOtherSample) {
  ticks_->fail("Mach host_statistics: 5");
  configure(showing(MetricID::cpuUsage));
  EXPECT_EQ(last()[MetricID::cpuUsage], MetricSample::unavailable("Mach host_statistics: 5"));
}

TEST_F(SamplingCoordinatorTest, LeavesTheQuotaStatesAlone) {
  configure(AppConfiguration{});
  EXPECT_EQ(last().codex, CodexQuotaState{});
  EXPECT_EQ(last().claude, ClaudeQuotaState{});
}

TEST_F(SamplingCoordinatorTest, RunsWithoutAReceiver) {
  coordinator_->onSnapshot = nullptr;
  configure(showing(MetricID::cpuUsage));
  time_.advance(Seconds{4});
  EXPECT_EQ(ticks_->reads(), 3);
}

// The end.

TEST_F(SamplingCoordinatorTest, EndsItsTimerAndPublishesNothingOnceItIsReleased) {
  configure(showing(MetricID::cpuUsage));
  published_.clear();
  coordinator_.reset();
  EXPECT_EQ(time_.pendingCount(), 0U);
  time_.advance(Seconds{10});
  EXPECT_THAT(published_, IsEmpty());
}

TEST_F(SamplingCoordinatorTest, DropsASnapshotThatWasUnderWayWhenItIsReleased) {
  coordinator_->configure(showing(MetricID::cpuUsage));
  queue_->post([this] { coordinator_.reset(); });
  time_.runPosted();
  EXPECT_THAT(published_, IsEmpty());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SamplingCoordinatorTest, StaysUntilAConfigurationThatWasScheduledHasRun) {
  coordinator_->configure(showing(MetricID::cpuUsage));
  const std::weak_ptr<SamplingCoordinator> weak = coordinator_;
  coordinator_.reset();
  EXPECT_FALSE(weak.expired());
  time_.runPosted();
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SamplingCoordinatorTest, ListsTheLinksWithoutTakingAReading) {
  network_->setPhysical("en0", false);
  network_->setUp("en0", false);
  network_->setAddressed("en0", false);
  std::vector<NetworkLink> links;
  coordinator_->listLinks([&](std::vector<NetworkLink> listed) { links = std::move(listed); });
  time_.runPosted();
  ASSERT_FALSE(links.empty());
  EXPECT_EQ(links[0], (NetworkLink{"en0", false, false, false}));
  EXPECT_EQ(network_->counterReads(), 0);
  network_->failRead("rtnetlink RTM_GETLINK falhou");
  coordinator_->listLinks([&](std::vector<NetworkLink> listed) { links = std::move(listed); });
  time_.runPosted();
  EXPECT_TRUE(links.empty());
}

}  // namespace
}  // namespace vantora::test
