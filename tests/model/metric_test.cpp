// SPDX-License-Identifier: MIT
#include "model/metric.hpp"

#include <gtest/gtest.h>

#include <set>

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
