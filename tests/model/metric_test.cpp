// SPDX-License-Identifier: MIT
#include "model/metric.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <vector>

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
    MetricID metric;
    std::string_view id;
    std::string_view title;
    std::optional<MetricFamily> family;
    std::string_view reservedText;
  };
  const Row rows[] = {
      {MetricID::none, "none", "Linha vazia", std::nullopt, ""},
      {MetricID::batteryPercent, "batteryPercent", "Bateria · porcentagem", MetricFamily::battery,
       "100%"},
      {MetricID::batteryTime, "batteryTime", "Bateria · tempo estimado", MetricFamily::battery,
       "166:39"},
      {MetricID::batteryTemperature, "batteryTemperature", "Bateria · temperatura média (SMC)",
       MetricFamily::sensors, "999°C"},
      {MetricID::upload, "upload", "Rede · upload", MetricFamily::network, "0,99M"},
      {MetricID::download, "download", "Rede · download", MetricFamily::network, "0,99M"},
      {MetricID::cpuUsage, "cpuUsage", "CPU · uso total", MetricFamily::cpu, "100%"},
      {MetricID::cpuTemperature, "cpuTemperature", "CPU · maior temperatura (SMC experimental)",
       MetricFamily::sensors, "999°C"},
      {MetricID::fan1Percent, "fan1Percent", "Ventoinha 1 · % do RPM máximo (SMC)",
       MetricFamily::sensors, "100%"},
      {MetricID::fan2Percent, "fan2Percent", "Ventoinha 2 · % do RPM máximo (SMC)",
       MetricFamily::sensors, "100%"},
      {MetricID::fan1RPM, "fan1RPM", "Ventoinha 1 · RPM (SMC)", MetricFamily::sensors, "99999"},
      {MetricID::fan2RPM, "fan2RPM", "Ventoinha 2 · RPM (SMC)", MetricFamily::sensors, "99999"},
      {MetricID::adapterWatts, "adapterWatts", "Adaptador · potência informada",
       MetricFamily::battery, ">9999W"},
      {MetricID::inputWatts, "inputWatts", "Entrada no Mac · potência (não validada)", std::nullopt,
       ">9999W"},
      {MetricID::batteryChargeWatts, "batteryChargeWatts",
       "Bateria · potência de carga (não validada)", std::nullopt, ">9999W"},
      {MetricID::codexWeeklyPercent, "codexWeeklyPercent", "Codex · cota semanal (%)",
       MetricFamily::codex, "100%*"},
      {MetricID::codexWeeklyReset, "codexWeeklyReset", "Codex · tempo até renovar",
       MetricFamily::codex, "14h59m"},
      {MetricID::claudeWeeklyPercent, "claudeWeeklyPercent", "Claude · cota semanal (%)",
       MetricFamily::claude, "100%*"},
      {MetricID::claudeSessionPercent, "claudeSessionPercent", "Claude · janela de 5 horas (%)",
       MetricFamily::claude, "100%*"},
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

TEST(MetricID, GivesNoFamilyToWhatNobodyProduces) {
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
