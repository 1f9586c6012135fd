// SPDX-License-Identifier: MIT
#include "model/decimal.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace vantora {
namespace {

TEST(FixedDecimal, WritesExactlyTheDecimalsAskedFor) {
  EXPECT_EQ(fixedDecimal(0, 2), "0.00");
  EXPECT_EQ(fixedDecimal(0.75, 2, ','), "0,75");
  EXPECT_EQ(fixedDecimal(-1.5, 1), "-1.5");
  EXPECT_EQ(fixedDecimal(1234567.891, 1), "1234567.9");
  EXPECT_EQ(fixedDecimal(41.4, 0), "41");
}

TEST(FixedDecimal, RoundsTheExactValueToTheNearestAndTiesToEven) {
  EXPECT_EQ(fixedDecimal(0.125, 2), "0.12");
  EXPECT_EQ(fixedDecimal(0.375, 2), "0.38");
  EXPECT_EQ(fixedDecimal(0.005, 2), "0.01");  // The double is a little above 0.005.
  EXPECT_EQ(fixedDecimal(0.994999, 2), "0.99");
}

TEST(FixedDecimal, WritesNothingWhereThereIsNoRoomForAllOfIt) {
  EXPECT_EQ(fixedDecimal(1e37, 1).size(), 39U);
  EXPECT_EQ(fixedDecimal(1e38, 1), "");  // 40 characters and the end of the string
  EXPECT_EQ(fixedDecimal(1e300, 0), "");
}

TEST(FixedDecimal, FollowsNoLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  int tried = 0;
  for (const char* name : {"de_DE.UTF-8", "pt_BR.UTF-8", "ps_AF.UTF-8", "C.UTF-8"}) {
    if (std::setlocale(LC_NUMERIC, name) != nullptr) {
      ++tried;
      EXPECT_EQ(fixedDecimal(0.5, 1), "0.5") << name;
      EXPECT_EQ(fixedDecimal(-12.25, 2, ','), "-12,25") << name;
    }
  }
  std::setlocale(LC_NUMERIC, before.c_str());
  EXPECT_GT(tried, 0);
}

}  // namespace
}  // namespace vantora
