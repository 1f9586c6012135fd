// SPDX-License-Identifier: MIT
#include "app/print/open_metrics.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <sstream>

#include "support/example_time.hpp"

namespace vantora {
namespace {

using testing::HasSubstr;
using testing::Not;

using test::exampleTime;

struct MetricsScene {
  void set(MetricID metric, double value) {
    snapshot.samples.set(metric, MetricSample::valid(value, "fonte", exampleTime));
  }
  [[nodiscard]] std::string text() const {
    return OpenMetrics::text({configuration, snapshot, presentation, notice, exampleTime});
  }

  AppConfiguration configuration;
  MetricSnapshot snapshot;
  StatusPresentation presentation;
  std::optional<std::string> notice;
};

MetricsScene complete() {
  MetricsScene scene;
  scene.set(MetricID::cpuUsage, 57);
  scene.set(MetricID::cpuTemperature, 61.25);
  scene.set(MetricID::download, 1'234'567.5);
  scene.set(MetricID::upload, 0);
  scene.set(MetricID::fan1Percent, 29);
  scene.set(MetricID::fan2Percent, 100);
  scene.set(MetricID::fan1RPM, 1800);
  scene.set(MetricID::fan2RPM, 6000);
  scene.set(MetricID::adapterWatts, 65);
  scene.set(MetricID::batteryPercent, 80);
  scene.set(MetricID::batteryTime, 90);
  scene.set(MetricID::batteryTemperature, 30.5);
  scene.snapshot.networkName = "eth0";
  scene.snapshot.batteryOnAC = true;
  CodexQuotaState& codex = scene.snapshot.codex;
  codex.status = CodexQuotaStatus::ready;
  codex.usedPercent = 43;
  codex.resetAt = exampleTime + std::chrono::hours(1);
  codex.lastSuccess = exampleTime - std::chrono::minutes(2);
  ClaudeQuotaState& claude = scene.snapshot.claude;
  claude.status = ClaudeQuotaStatus::stale;
  claude.weeklyUsed = 12.5;
  claude.weeklyResetAt = exampleTime + std::chrono::hours(2);
  claude.sessionUsed = 101;
  claude.sessionResetAt = exampleTime + std::chrono::hours(3);
  claude.lastSuccess = exampleTime - std::chrono::minutes(29);
  return scene;
}

TEST(OpenMetrics, WritesEveryReadingInBaseUnits) {
  const std::string text = complete().text();
  for (const char* line : {
           "vantora_cpu_usage_ratio 0.57\n",
           "vantora_cpu_temperature_celsius 61.25\n",
           "vantora_network_receive_bytes_per_second{interface=\"eth0\"} 1234567.5\n",
           "vantora_network_transmit_bytes_per_second{interface=\"eth0\"} 0\n",
           "vantora_fan_speed_ratio{fan=\"1\"} 0.29\n",
           "vantora_fan_speed_ratio{fan=\"2\"} 1\n",
           "vantora_fan_speed_rpm{fan=\"1\"} 1800\n",
           "vantora_fan_speed_rpm{fan=\"2\"} 6000\n",
           "vantora_adapter_power_watts 65\n",
           "vantora_battery_charge_ratio 0.8\n",
           "vantora_battery_remaining_seconds 5400\n",
           "vantora_battery_temperature_celsius 30.5\n",
           "vantora_battery_charging 0\n",
           "vantora_battery_external_power 1\n",
           "vantora_quota_used_ratio{assistant=\"codex\",window=\"weekly\"} 0.43\n",
           "vantora_quota_used_ratio{assistant=\"claude\",window=\"weekly\"} 0.125\n",
           "vantora_quota_used_ratio{assistant=\"claude\",window=\"five_hours\"} 1.01\n",
           "vantora_quota_reset_timestamp_seconds{assistant=\"codex\",window=\"weekly\"} "
           "1790003600\n",
           "vantora_quota_reset_timestamp_seconds{assistant=\"claude\",window=\"weekly\"} "
           "1790007200\n",
           "vantora_quota_reset_timestamp_seconds{assistant=\"claude\",window=\"five_hours\"} "
           "1790010800\n",
           "vantora_quota_updated_timestamp_seconds{assistant=\"codex\"} 1789999880\n",
           "vantora_quota_updated_timestamp_seconds{assistant=\"claude\"} 1789998260\n",
           "vantora_quota_status{assistant=\"codex\",status=\"ready\"} 1\n",
           "vantora_quota_status{assistant=\"claude\",status=\"stale\"} 1\n",
           "vantora_sample_timestamp_seconds{metric=\"cpuUsage\"} 1790000000\n",
       }) {
    EXPECT_THAT(text, HasSubstr(line));
  }
}

TEST(OpenMetrics, HasNoLineForWhatIsMissing) {
  MetricsScene scene;
  scene.snapshot.samples.set(MetricID::cpuUsage, MetricSample::waiting("fonte"));
  scene.snapshot.samples.set(MetricID::cpuTemperature, MetricSample::unavailable("fonte"));
  MetricSample old = MetricSample::valid(40, "fonte", exampleTime);
  old.quality = Quality::stale;
  scene.snapshot.samples.set(MetricID::batteryPercent, old);
  scene.set(MetricID::upload, std::numeric_limits<double>::quiet_NaN());
  scene.snapshot.codex.usedPercent = 5;  // of an integration that is switched off
  std::istringstream lines(scene.text());
  std::set<std::string> readings;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with('#')) {
      readings.insert(line.substr(0, line.find_first_of("{ ")));
    }
  }
  // A timestamp would be one of a reading.
  EXPECT_EQ(readings.erase("vantora_sample_timestamp_seconds"), 1U);
  EXPECT_EQ(readings, std::set<std::string>{"vantora_build_info"});
}

TEST(OpenMetrics, HasNoTimestampOfASampleWithoutAValue) {
  MetricsScene scene;
  MetricSample failed = MetricSample::waiting("fonte");
  failed.sampledAt = exampleTime;
  scene.snapshot.samples.set(MetricID::cpuUsage, failed);
  EXPECT_THAT(scene.text(), Not(HasSubstr("sample_timestamp")));
}

TEST(OpenMetrics, ForgetsAQuotaThatIsTooOldToBeShown) {
  MetricsScene scene = complete();
  scene.snapshot.codex.lastSuccess = exampleTime - std::chrono::minutes(30);
  scene.snapshot.claude.lastSuccess = exampleTime - std::chrono::minutes(31);
  EXPECT_THAT(scene.text(), Not(HasSubstr("quota_used_ratio")));
  EXPECT_THAT(scene.text(), Not(HasSubstr("quota_reset")));
  EXPECT_THAT(scene.text(), HasSubstr("vantora_quota_status{assistant=\"codex\""));
}

TEST(OpenMetrics, EscapesLabelValuesAndRepairsTheirBytes) {
  MetricsScene scene;
  scene.set(MetricID::upload, 1);
  scene.snapshot.networkName = "a\"b\\c\nd\xFF";
  EXPECT_THAT(scene.text(), HasSubstr("{interface=\"a\\\"b\\\\c\\nd\xEF\xBF\xBD\"} 1\n"));
}

TEST(OpenMetrics, HeadsEachFamilyOnceAndEndsWithTheEndMark) {
  const std::string text = complete().text();
  std::istringstream lines(text);
  std::set<std::string> typed;
  std::string family;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("# TYPE ")) {
      family = line.substr(7, line.find(' ', 7) - 7);
      EXPECT_TRUE(typed.insert(family).second) << line;
      EXPECT_EQ(line, "# TYPE " + family + " gauge");
    } else if (line.starts_with("# UNIT ")) {
      const std::string unit = line.substr(line.rfind(' ') + 1);
      EXPECT_TRUE(family.ends_with("_" + unit)) << line;
    } else if (!line.starts_with('#')) {
      EXPECT_EQ(line.substr(0, line.find_first_of("{ ")), family);
    }
  }
  EXPECT_GE(typed.size(), 18U);
  EXPECT_TRUE(text.ends_with("\n# EOF\n"));
}

TEST(OpenMetrics, ReadsEveryMetricThatHasASource) {
  EXPECT_EQ(OpenMetrics::allReadings().size(), metricCount - 3);
  EXPECT_FALSE(OpenMetrics::allReadings().contains(MetricID::none));
  EXPECT_FALSE(OpenMetrics::allReadings().contains(MetricID::inputWatts));
}

}  // namespace
}  // namespace vantora
