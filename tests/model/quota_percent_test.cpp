// SPDX-License-Identifier: MIT
#include "model/quota_percent.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

constexpr QuotaPercentStyle remaining{};
constexpr QuotaPercentStyle remainingExact{.oneDecimal = true};
constexpr QuotaPercentStyle usedShare{.showUsed = true};
constexpr QuotaPercentStyle usedExact{.showUsed = true, .oneDecimal = true};

TEST(QuotaPercent, CutsDownAndNeverRoundsUp) {
  EXPECT_EQ(quotaPercentText(12.97, remaining), "87%");
  EXPECT_EQ(quotaPercentText(12.97, remainingExact), "87.0%");
  EXPECT_EQ(quotaPercentText(42.99, usedShare), "42%");
  EXPECT_EQ(quotaPercentText(0.46, usedExact), "0.4%");
  EXPECT_EQ(quotaPercentText(99.99, usedExact), "99.9%");
  EXPECT_EQ(quotaPercentText(42.3, usedExact), "42.3%");
}

TEST(QuotaPercent, ShowsTheRemainingOrTheUsedShare) {
  EXPECT_EQ(quotaPercentText(37.5, remaining), "62%");
  EXPECT_EQ(quotaPercentText(37.5, remainingExact), "62.5%");
  EXPECT_EQ(quotaPercentText(37.5, usedShare), "37%");
  EXPECT_EQ(quotaPercentText(37.5, usedExact), "37.5%");
}

TEST(QuotaPercent, WritesLessThanOneOnlyBetweenZeroAndOneWithoutDecimals) {
  EXPECT_EQ(quotaPercentText(99.6, remaining), "<1%");
  EXPECT_EQ(quotaPercentText(0.4, usedShare), "<1%");
  EXPECT_EQ(quotaPercentText(0.999, usedShare), "<1%");
  EXPECT_EQ(quotaPercentText(0, usedShare), "0%");
  EXPECT_EQ(quotaPercentText(1, usedShare), "1%");
  EXPECT_EQ(quotaPercentText(0.04, usedExact), "0.0%");
  EXPECT_EQ(quotaPercentText(0, usedExact), "0.0%");
}

TEST(QuotaPercent, MarksMoreThanEverythingOnTheUsedShareWhicheverIsShown) {
  EXPECT_EQ(quotaPercentText(130, usedShare), "100%!");
  EXPECT_EQ(quotaPercentText(130, remaining), "0%!");
  EXPECT_EQ(quotaPercentText(100.5, usedExact), "100.0%!");
  EXPECT_EQ(quotaPercentText(100, usedShare), "100%");
  EXPECT_EQ(quotaPercentText(100, remaining), "0%");
}

TEST(QuotaPercent, MarksAStaleValueWithTheStarAlone) {
  EXPECT_EQ(quotaPercentText(130, {.showUsed = true, .isStale = true}), "100%*");
  EXPECT_EQ(quotaPercentText(43, {.isStale = true}), "57%*");
  EXPECT_EQ(quotaPercentText(0.5, {.showUsed = true, .isStale = true}), "<1%*");
  EXPECT_EQ(quotaPercentText(0.5, {.showUsed = true, .oneDecimal = true, .isStale = true}),
            "0.5%*");
}

TEST(QuotaPercent, HoldsValuesFarOutside) {
  EXPECT_EQ(quotaPercentText(1.7e308, usedShare), "100%!");
  EXPECT_EQ(quotaPercentText(1.7e308, remaining), "0%!");
}

}  // namespace
}  // namespace vantora
