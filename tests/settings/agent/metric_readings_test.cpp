// SPDX-License-Identifier: MIT
#include "settings/agent/metric_readings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/example_time.hpp"

namespace vantora {
namespace {

using test::exampleTime;

class MetricReadingsTest : public testing::Test {
 protected:
  MetricReading reading(MetricID metric) {
    configuration_.modules.resize(1);
    configuration_.modules[0].enabled = true;
    configuration_.modules[0].top = metric;
    configuration_.modules[0].bottom = MetricID::none;
    const auto all = metricReadings(configuration_, snapshot_, exampleTime);
    EXPECT_EQ(all.size(), 1U);
    return all.empty() ? MetricReading{} : all[0];
  }
  void set(MetricID metric, MetricSample sample) {
    snapshot_.samples.set(metric, std::move(sample));
  }

  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
};

TEST_F(MetricReadingsTest, GiveAFreshValueWithoutAReason) {
  set(MetricID::cpuUsage, MetricSample::valid(12, "Linux /proc/stat", exampleTime));
  EXPECT_EQ(reading(MetricID::cpuUsage), (MetricReading{MetricID::cpuUsage, "12%", Quality::valid,
                                                        "Linux /proc/stat", "", exampleTime}));
}

TEST_F(MetricReadingsTest, SayWhyThereIsNone) {
  set(MetricID::batteryPercent, MetricSample::unavailable("Bateria interna indisponível"));
  set(MetricID::upload, MetricSample::waiting("eth0 · primeira amostra"));
  EXPECT_EQ(reading(MetricID::batteryPercent).text, "—");
  EXPECT_EQ(reading(MetricID::batteryPercent).reason, "Bateria interna indisponível");
  EXPECT_EQ(reading(MetricID::upload).reason, "Aguardando amostra");
  EXPECT_EQ(reading(MetricID::upload).source, "eth0 · primeira amostra");
  EXPECT_EQ(reading(MetricID::upload).quality, Quality::waiting);
}

TEST_F(MetricReadingsTest, TellALackFromAMetricThatWasNotLookedAtYet) {
  EXPECT_EQ(reading(MetricID::cpuUsage).quality, Quality::waiting);
  EXPECT_EQ(reading(MetricID::cpuUsage).reason, "Aguardando amostra");
  EXPECT_EQ(reading(MetricID::inputWatts).quality, Quality::unavailable);
  EXPECT_FALSE(reading(MetricID::inputWatts).reason.empty());
}

TEST_F(MetricReadingsTest, GiveThePauseAsTheReasonWhilePaused) {
  MetricSample old = MetricSample::valid(12, "Linux /proc/stat", exampleTime);
  old.quality = Quality::stale;
  set(MetricID::cpuUsage, old);
  EXPECT_EQ(reading(MetricID::cpuUsage).reason, "Aguardando amostra");
  configuration_.paused = true;
  EXPECT_EQ(reading(MetricID::cpuUsage).reason, "Coleta pausada");
  EXPECT_EQ(reading(MetricID::cpuUsage).text, "—");
  EXPECT_EQ(reading(MetricID::cpuUsage).source, "Linux /proc/stat");
  EXPECT_EQ(reading(MetricID::upload).reason, "Coleta pausada");
}

TEST_F(MetricReadingsTest, GiveAQuotasMessageAsTheReason) {
  EXPECT_EQ(reading(MetricID::codexWeeklyReset).reason, "Integração desativada.");
  EXPECT_EQ(reading(MetricID::claudeWeeklyPercent).quality, Quality::unavailable);
  snapshot_.claude.status = ClaudeQuotaStatus::ready;
  snapshot_.claude.weeklyUsed = 40;
  snapshot_.claude.lastSuccess = exampleTime;
  snapshot_.claude.message = "Limites consultados.";
  EXPECT_EQ(reading(MetricID::claudeWeeklyPercent).reason, "");
  EXPECT_EQ(reading(MetricID::claudeWeeklyPercent).sampledAt, exampleTime);
  // The service reported the other window alone.
  EXPECT_EQ(reading(MetricID::claudeSessionPercent).reason, "Limites consultados.");
  snapshot_.codex.status = CodexQuotaStatus::error;
  EXPECT_EQ(reading(MetricID::codexWeeklyPercent).quality, Quality::temporaryError);
}

TEST_F(MetricReadingsTest, LeaveOutWhatNoActiveModuleShows) {
  configuration_.modules.resize(2);
  configuration_.modules[0].top = MetricID::download;
  configuration_.modules[0].bottom = MetricID::batteryPercent;
  configuration_.modules[1].enabled = false;
  configuration_.modules[1].top = MetricID::cpuUsage;
  const auto all = metricReadings(configuration_, snapshot_, exampleTime);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].metric, MetricID::batteryPercent);
  EXPECT_EQ(all[1].metric, MetricID::download);
}

}  // namespace
}  // namespace vantora
