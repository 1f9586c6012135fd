// SPDX-License-Identifier: MIT
#include "model/metric.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <vector>

#include "model/words.hpp"

namespace vantora {
namespace {

TEST(MetricID, HasNineteenDistinctIdentifiersThatReadBack) {
  std::set<std::string_view> ids;
  for (const MetricID metric : allMetrics) {
    ids.insert(id(metric));
    EXPECT_EQ(metricFromId(id(metric)), metric);
  }
  EXPECT_EQ(ids.size(), 19U);
  EXPECT_EQ(id(allMetrics.front()), "none");
  EXPECT_EQ(id(allMetrics.back()), "claudeSessionPercent");
}

// Every text as the user reads it.
TEST(MetricID, IsListedUnderItsTitleWithItsFamilyAndItsWidestText) {
  struct Row {
    std::string_view id;
    std::string_view title;
    std::string_view reservedText;
    MetricID metric;
    std::optional<MetricFamily> family;
  };
  const Row rows[] = {
      {"none", "Linha vazia", "", MetricID::none, std::nullopt},
      {"batteryPercent", "Bateria · porcentagem", "100%", MetricID::batteryPercent,
       MetricFamily::battery},
      {"batteryTime", "Bateria · tempo estimado", "166:39", MetricID::batteryTime,
       MetricFamily::battery},
      {"batteryTemperature", Words::batteryTemperatureTitle, "999°C", MetricID::batteryTemperature,
       MetricFamily::sensors},
      {"upload", "Rede · upload", "0,99M", MetricID::upload, MetricFamily::network},
      {"download", "Rede · download", "0,99M", MetricID::download, MetricFamily::network},
      {"cpuUsage", "CPU · uso total", "100%", MetricID::cpuUsage, MetricFamily::cpu},
      {"cpuTemperature", Words::cpuTemperatureTitle, "999°C", MetricID::cpuTemperature,
       MetricFamily::sensors},
      {"fan1Percent", Words::fan1PercentTitle, "100%", MetricID::fan1Percent,
       MetricFamily::sensors},
      {"fan2Percent", Words::fan2PercentTitle, "100%", MetricID::fan2Percent,
       MetricFamily::sensors},
      {"fan1RPM", Words::fan1RPMTitle, "99999", MetricID::fan1RPM, MetricFamily::sensors},
      {"fan2RPM", Words::fan2RPMTitle, "99999", MetricID::fan2RPM, MetricFamily::sensors},
      {"adapterWatts", "Adaptador · potência informada", ">9999W", MetricID::adapterWatts,
       MetricFamily::battery},
      {"inputWatts", Words::inputWattsTitle, ">9999W", MetricID::inputWatts, std::nullopt},
      {"batteryChargeWatts", "Bateria · potência de carga (não validada)", ">9999W",
       MetricID::batteryChargeWatts, std::nullopt},
      {"codexWeeklyPercent", "Codex · cota semanal (%)", "100%*", MetricID::codexWeeklyPercent,
       MetricFamily::codex},
      {"codexWeeklyReset", "Codex · tempo até renovar", "14h59m", MetricID::codexWeeklyReset,
       MetricFamily::codex},
      {"claudeWeeklyPercent", "Claude · cota semanal (%)", "100%*", MetricID::claudeWeeklyPercent,
       MetricFamily::claude},
      {"claudeSessionPercent", "Claude · janela de 5 horas (%)", "100%*",
       MetricID::claudeSessionPercent, MetricFamily::claude},
  };
  ASSERT_EQ(std::size(rows), allMetrics.size());
  for (std::size_t index = 0; index < std::size(rows); ++index) {
    const Row& row = rows[index];
    EXPECT_EQ(row.metric, allMetrics[index]) << row.id;
    EXPECT_EQ(id(row.metric), row.id);
    EXPECT_EQ(title(row.metric), row.title);
    EXPECT_EQ(family(row.metric), row.family) << row.id;
    EXPECT_EQ(reservedText(row.metric), row.reservedText) << row.id;
  }
}

TEST(MetricID, KnowsNoOtherIdentifier) {
  EXPECT_EQ(metricFromId(""), std::nullopt);
  EXPECT_EQ(metricFromId("CpuUsage"), std::nullopt);
  EXPECT_EQ(metricFromId("cpuUsage "), std::nullopt);
}

TEST(MetricID, CallsExactlyTheFourFanMetricsFans) {
  const MetricSet fans{MetricID::fan1Percent, MetricID::fan2Percent, MetricID::fan1RPM,
                       MetricID::fan2RPM};
  for (const MetricID metric : allMetrics) {
    EXPECT_EQ(isFan(metric), fans.contains(metric)) << id(metric);
  }
}

TEST(MetricID, GivesNoFamilyToWhatNothingProduces) {
  EXPECT_EQ(family(MetricID::none), std::nullopt);
  EXPECT_EQ(family(MetricID::inputWatts), std::nullopt);
  EXPECT_EQ(family(MetricID::batteryChargeWatts), std::nullopt);
  EXPECT_EQ(family(MetricID::adapterWatts), MetricFamily::battery);
  EXPECT_EQ(family(MetricID::batteryTemperature), MetricFamily::sensors);
}

TEST(MetricSet, IteratesInDeclarationOrder) {
  const MetricSet set{MetricID::claudeSessionPercent, MetricID::none, MetricID::upload};
  std::vector<MetricID> seen;
  for (const MetricID metric : set) {
    seen.push_back(metric);
  }
  EXPECT_EQ(seen, (std::vector{MetricID::none, MetricID::upload, MetricID::claudeSessionPercent}));
  EXPECT_EQ(set.size(), 3U);
}

}  // namespace
}  // namespace vantora
