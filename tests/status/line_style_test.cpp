// SPDX-License-Identifier: MIT
#include "status/line_style.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

double unitSize(double pointSize) {
  const StyledText text =
      LineStyle::styled("0,04M", {Typeface::monospaced, pointSize}, MetricID::download);
  return text.size() == 2 ? text.back().font.pointSize : 0;
}

TEST(LineStyle, KeepsTheUnitOfARateAtFivePointsAtLeast) {
  EXPECT_DOUBLE_EQ(unitSize(10), 7);
  EXPECT_DOUBLE_EQ(unitSize(8), 5.6);
  EXPECT_DOUBLE_EQ(unitSize(7), 5);
}

TEST(LineStyle, SetsAUnitWithoutDigitsAlone) {
  const StyledText text = LineStyle::styled("M", {Typeface::monospaced, 10}, MetricID::upload);
  EXPECT_EQ(text, (StyledText{{"M", {Typeface::monospaced, 7}}}));
}

}  // namespace
}  // namespace vantora
