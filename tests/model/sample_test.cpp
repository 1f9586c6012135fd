// SPDX-License-Identifier: MIT
#include "model/sample.hpp"

#include <gtest/gtest.h>

#include "model/words.hpp"
#include "support/example_time.hpp"

namespace vantora {
namespace {

using test::exampleTime;

TEST(MetricSample, CarriesTheInstantOnlyWhenItIsValid) {
  const auto valid = MetricSample::valid(42, "fonte", exampleTime);
  EXPECT_EQ(valid.value, 42);
  EXPECT_EQ(valid.quality, Quality::valid);
  EXPECT_EQ(valid.sampledAt, exampleTime);
  EXPECT_EQ(valid.source, "fonte");
  for (const auto& sample : {MetricSample::waiting("fonte"), MetricSample::unavailable("fonte")}) {
    EXPECT_EQ(sample.value, std::nullopt);
    EXPECT_EQ(sample.sampledAt, std::nullopt);
    EXPECT_EQ(sample.source, "fonte");
  }
  EXPECT_EQ(MetricSample::waiting("").quality, Quality::waiting);
  EXPECT_EQ(MetricSample::unavailable("").quality, Quality::unavailable);
}

TEST(Quality, IsWrittenAsItsCaseName) {
  EXPECT_EQ(rawText(Quality::valid), "valid");
  EXPECT_EQ(rawText(Quality::waiting), "waiting");
  EXPECT_EQ(rawText(Quality::unavailable), "unavailable");
  EXPECT_EQ(rawText(Quality::temporaryError), "temporaryError");
  EXPECT_EQ(rawText(Quality::stale), "stale");
}

TEST(MetricSnapshot, ReadsEveryMetricAsUnavailableWhileItIsEmpty) {
  const MetricSnapshot snapshot;
  for (const MetricID metric : allMetrics) {
    const MetricSample& sample = snapshot[metric];
    EXPECT_EQ(sample.value, std::nullopt);
    EXPECT_EQ(sample.quality, Quality::unavailable);
    EXPECT_EQ(sample.sampledAt, std::nullopt);
    EXPECT_EQ(sample.source, Words::sourceNotValidated);
  }
}

TEST(MetricSnapshot, StartsWithItsDefaults) {
  const MetricSnapshot snapshot;
  EXPECT_TRUE(snapshot.samples.empty());
  EXPECT_FALSE(snapshot.batteryOnAC);
  EXPECT_FALSE(snapshot.batteryCharging);
  EXPECT_EQ(snapshot.networkName, std::nullopt);
  EXPECT_EQ(snapshot.codex, CodexQuotaState());
  EXPECT_EQ(snapshot.claude, ClaudeQuotaState());
}

TEST(SampleTable, KeepsReplacesAndErasesOneSampleAMetric) {
  SampleTable table;
  table.set(MetricID::upload, MetricSample::waiting("a"));
  table.set(MetricID::upload, MetricSample::waiting("b"));
  table.set(MetricID::cpuUsage, MetricSample::waiting("c"));
  ASSERT_NE(table.find(MetricID::upload), nullptr);
  EXPECT_EQ(table.find(MetricID::upload)->source, "b");
  EXPECT_EQ(table.metrics(), (MetricSet{MetricID::upload, MetricID::cpuUsage}));
  table.erase(MetricID::upload);
  EXPECT_EQ(table.find(MetricID::upload), nullptr);
  EXPECT_FALSE(table.empty());
}

TEST(SampleTable, TakesNewerSamplesInThePlaceOfItsOwn) {
  SampleTable newer;
  newer.set(MetricID::upload, MetricSample::waiting("new"));
  SampleTable table;
  table.set(MetricID::upload, MetricSample::waiting("old"));
  table.set(MetricID::cpuUsage, MetricSample::waiting("kept"));
  table.merge(std::move(newer));
  EXPECT_EQ(table.find(MetricID::upload)->source, "new");
  EXPECT_EQ(table.find(MetricID::cpuUsage)->source, "kept");
  EXPECT_EQ(table.metrics(), (MetricSet{MetricID::upload, MetricID::cpuUsage}));
}

}  // namespace
}  // namespace vantora
