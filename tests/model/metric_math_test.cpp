// SPDX-License-Identifier: MIT
#include "model/metric_math.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vantora {
namespace {

constexpr auto most = std::numeric_limits<std::uint64_t>::max();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(MetricMath, GivesTheShareOfActiveTicks) {
  EXPECT_EQ(MetricMath::percentage(130, 170, 100, 100), 30.0);
  EXPECT_EQ(MetricMath::percentage(200, 100, 100, 100), 100.0);
  EXPECT_EQ(MetricMath::percentage(100, 200, 100, 100), 0.0);
}

TEST(MetricMath, GivesNoPercentageWhenNoTickElapsed) {
  EXPECT_EQ(MetricMath::percentage(100, 100, 100, 100), std::nullopt);
}

TEST(MetricMath, GivesNoPercentageWhenACounterWentBackwards) {
  EXPECT_EQ(MetricMath::percentage(99, 200, 100, 100), std::nullopt);
  EXPECT_EQ(MetricMath::percentage(200, 99, 100, 100), std::nullopt);
}

TEST(MetricMath, GivesNoPercentageWhenTheSumOverflows) {
  EXPECT_EQ(MetricMath::percentage(most, 1, 0, 0), std::nullopt);
  EXPECT_NE(MetricMath::percentage(most - 1, 1, 0, 0), std::nullopt);
}

TEST(MetricMath, GivesTheIncreasePerSecond) {
  EXPECT_EQ(MetricMath::rate(3000, 1000, 2.0), 1000.0);
  EXPECT_EQ(MetricMath::rate(1000, 1000, 1.0), 0.0);
}

TEST(MetricMath, GivesNoRateWithoutAHonestSpan) {
  EXPECT_EQ(MetricMath::rate(999, 1000, 1.0), std::nullopt);
  EXPECT_EQ(MetricMath::rate(2000, 1000, 0.0), std::nullopt);
  EXPECT_EQ(MetricMath::rate(2000, 1000, -1.0), std::nullopt);
  EXPECT_EQ(MetricMath::rate(2000, 1000, infinity), std::nullopt);
  EXPECT_EQ(MetricMath::rate(2000, 1000, nan), std::nullopt);
}

TEST(MetricMath, GivesAFansShareOfItsMaximum) {
  EXPECT_EQ(MetricMath::fanPercent(3000, 6000), 50.0);
  EXPECT_EQ(MetricMath::fanPercent(0, 6000), 0.0);
  EXPECT_EQ(MetricMath::fanPercent(6000, 6000), 100.0);
}

TEST(MetricMath, GivesNoShareOfAMaximumThatCannotBe) {
  EXPECT_EQ(MetricMath::fanPercent(2000, 0), std::nullopt);
  EXPECT_EQ(MetricMath::fanPercent(2000, -1), std::nullopt);
  EXPECT_EQ(MetricMath::fanPercent(-1, 6000), std::nullopt);
  EXPECT_EQ(MetricMath::fanPercent(6000.5, 6000), std::nullopt);
  EXPECT_EQ(MetricMath::fanPercent(nan, 6000), std::nullopt);
  EXPECT_EQ(MetricMath::fanPercent(2000, nan), std::nullopt);
}

}  // namespace
}  // namespace vantora
