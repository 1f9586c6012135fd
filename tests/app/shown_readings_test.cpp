// SPDX-License-Identifier: MIT
#include "app/shown_readings.hpp"

#include <gtest/gtest.h>

#include "support/example_time.hpp"
#include "support/live_memory.hpp"

namespace vantora::test {
namespace {

class ShownReadingsTest : public testing::Test {
 protected:
  ShownReadingsTest() {
    set(MetricID::cpuUsage, 17);
    set(MetricID::cpuTemperature, 50);
    snapshot.networkName = "en0";
    (void)shown.take(snapshot);
  }
  void set(MetricID metric, double value) {
    snapshot.samples.set(metric,
                         MetricSample::valid(value, "fonte que não cabe em 15 bytes", exampleTime));
  }

  MetricSnapshot snapshot;
  ShownReadings shown;
};

TEST(ShownReadings, AreToldFromNoneAtFirst) {
  ShownReadings shown;
  EXPECT_TRUE(shown.take({}));
  EXPECT_FALSE(shown.take({}));
}

TEST_F(ShownReadingsTest, AreTheSameWhileNoTextChanges) {
  set(MetricID::cpuUsage, 17.4);
  EXPECT_FALSE(shown.take(snapshot));
}

TEST_F(ShownReadingsTest, DifferByTheTextOfAValue) {
  set(MetricID::cpuUsage, 18);
  EXPECT_TRUE(shown.take(snapshot));
  EXPECT_FALSE(shown.take(snapshot));
}

TEST_F(ShownReadingsTest, DifferByWhereAValueCameFrom) {
  snapshot.samples.set(MetricID::cpuUsage, MetricSample::valid(17, "outra fonte", exampleTime));
  EXPECT_TRUE(shown.take(snapshot));
}

TEST_F(ShownReadingsTest, DifferByTheQualityBehindADash) {
  snapshot.samples.set(MetricID::cpuUsage, MetricSample::waiting("fonte"));
  EXPECT_TRUE(shown.take(snapshot));
  snapshot.samples.set(MetricID::cpuUsage, MetricSample::unavailable("fonte"));
  EXPECT_TRUE(shown.take(snapshot));
}

TEST_F(ShownReadingsTest, DifferByAReadingThatComesOrGoes) {
  snapshot.samples.erase(MetricID::cpuTemperature);
  EXPECT_TRUE(shown.take(snapshot));
  set(MetricID::fan1RPM, 900);
  EXPECT_TRUE(shown.take(snapshot));
}

TEST_F(ShownReadingsTest, DifferByThePowerSourceAndTheLink) {
  snapshot.batteryOnAC = true;
  EXPECT_TRUE(shown.take(snapshot));
  snapshot.batteryCharging = true;
  EXPECT_TRUE(shown.take(snapshot));
  snapshot.networkName = "en1";
  EXPECT_TRUE(shown.take(snapshot));
  snapshot.networkName.reset();
  EXPECT_TRUE(shown.take(snapshot));
  EXPECT_FALSE(shown.take(snapshot));
}

TEST_F(ShownReadingsTest, TakeNoMemoryWhileTheyAreTheSame) {
  const auto before = allocations();
  EXPECT_FALSE(shown.take(snapshot));
  EXPECT_EQ(allocations(), before);
}

}  // namespace
}  // namespace vantora::test
