// SPDX-License-Identifier: MIT
#include "quota/retry_backoff.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace vantora {
namespace {

constexpr Seconds minute{60};

TEST(RetryBackoff, GrowsWithEveryFailureUpToHalfAnHour) {
  RetryBackoff backoff([] { return 0.0; });
  for (const double expected : {180.0, 360.0, 720.0, 1800.0, 1800.0, 1800.0}) {
    EXPECT_EQ(backoff.afterFailure(minute).count(), expected);
  }
}

TEST(RetryBackoff, IsNeverShorterThanTheInterval) {
  RetryBackoff backoff([] { return 0.0; });
  for (const double expected : {600.0, 600.0, 720.0, 1800.0}) {
    EXPECT_EQ(backoff.afterFailure(10 * minute).count(), expected);
  }
}

TEST(RetryBackoff, AddsAFractionOfFifteenSeconds) {
  double fraction = 0;
  RetryBackoff backoff([&fraction] { return fraction; });
  EXPECT_EQ(backoff.afterFailure(minute).count(), 180);
  fraction = 0.5;
  EXPECT_EQ(backoff.afterFailure(minute).count(), 367.5);
  fraction = 0.9375;
  EXPECT_EQ(backoff.afterFailure(minute).count(), 734.0625);
}

TEST(RetryBackoff, BeginsAgainAfterAReset) {
  RetryBackoff backoff([] { return 0.0; });
  (void)backoff.afterFailure(minute);
  (void)backoff.afterFailure(minute);
  backoff.reset();
  EXPECT_EQ(backoff.afterFailure(minute).count(), 180);
}

TEST(SystemRandomFraction, StaysBelowOneAndFallsIntoBothHalves) {
  double least = 1;
  double most = 0;
  for (int draw = 0; draw < 100; ++draw) {
    const double fraction = systemRandomFraction();
    EXPECT_GE(fraction, 0);
    EXPECT_LT(fraction, 1);
    least = std::min(least, fraction);
    most = std::max(most, fraction);
  }
  EXPECT_LT(least, 0.5);
  EXPECT_GT(most, 0.5);
}

}  // namespace
}  // namespace vantora
