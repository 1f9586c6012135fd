// SPDX-License-Identifier: MIT
#include "app/print/print_completion.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

AppConfiguration showing(MetricID metric) {
  AppConfiguration configuration;
  configuration.modules.resize(1);
  configuration.modules[0].top = metric;
  configuration.modules[0].bottom = MetricID::none;
  return configuration;
}

TEST(PrintCompletion, WaitsForTheSecondRoundWhereATimerSamples) {
  for (const MetricID metric : {MetricID::cpuUsage, MetricID::upload, MetricID::fan1RPM}) {
    EXPECT_FALSE(PrintCompletion::isComplete(showing(metric), {}, 0));
    EXPECT_FALSE(PrintCompletion::isComplete(showing(metric), {}, 1));
    EXPECT_TRUE(PrintCompletion::isComplete(showing(metric), {}, 2));
  }
}

TEST(PrintCompletion, IsContentWithTheFirstRoundWhereNoTimerSamples) {
  for (const MetricID metric : {MetricID::batteryPercent, MetricID::codexWeeklyPercent,
                                MetricID::inputWatts, MetricID::none}) {
    EXPECT_FALSE(PrintCompletion::isComplete(showing(metric), {}, 0));
    EXPECT_TRUE(PrintCompletion::isComplete(showing(metric), {}, 1));
  }
}

TEST(PrintCompletion, IsContentWithTheFirstRoundWhilePaused) {
  auto configuration = showing(MetricID::cpuUsage);
  configuration.paused = true;
  EXPECT_TRUE(PrintCompletion::isComplete(configuration, {}, 1));
}

TEST(PrintCompletion, WaitsForAShownQuotaThatIsStillConnecting) {
  MetricSnapshot snapshot;
  snapshot.codex.status = CodexQuotaStatus::connecting;
  EXPECT_FALSE(PrintCompletion::isComplete(showing(MetricID::codexWeeklyReset), snapshot, 9));
  EXPECT_TRUE(PrintCompletion::isComplete(showing(MetricID::claudeWeeklyPercent), snapshot, 9));
  snapshot.codex.status = CodexQuotaStatus::needsAuthentication;
  EXPECT_TRUE(PrintCompletion::isComplete(showing(MetricID::codexWeeklyReset), snapshot, 9));

  snapshot.claude.status = ClaudeQuotaStatus::connecting;
  EXPECT_FALSE(PrintCompletion::isComplete(showing(MetricID::claudeSessionPercent), snapshot, 9));
  EXPECT_TRUE(PrintCompletion::isComplete(showing(MetricID::cpuUsage), snapshot, 9));
}

}  // namespace
}  // namespace vantora
