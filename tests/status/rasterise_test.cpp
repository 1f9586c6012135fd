// SPDX-License-Identifier: MIT
#include "status/rasterise.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/fake_text_engine.hpp"

namespace vantora {
namespace {

StatusImage imageOf(double width, double height) {
  StatusImage image;
  image.width = width;
  image.height = height;
  return image;
}

TEST(Rasterise, MakesScalePixelsOfAPoint) {
  test::FakeTextEngine engine;
  for (const int scale : {1, 2, 3}) {
    const AlphaBitmap bitmap = rasterise(imageOf(121, 22), engine, scale);
    EXPECT_EQ(bitmap.width, 121 * scale);
    EXPECT_EQ(bitmap.height, 22 * scale);
    EXPECT_EQ(bitmap, AlphaBitmap(121 * scale, 22 * scale));
  }
}

TEST(Rasterise, RoundsAPartOfAPixelUp) {
  test::FakeTextEngine engine;
  EXPECT_EQ(rasterise(imageOf(20.1, 22), engine, 1).width, 21);
  EXPECT_EQ(rasterise(imageOf(20, 22), engine, 1.25).height, 28);
  EXPECT_EQ(rasterise(imageOf(20 + 1e-12, 22), engine, 1).width, 20);
}

TEST(Rasterise, DrawsEveryTextAtItsPlace) {
  test::FakeTextEngine engine;
  StatusImage image = imageOf(40, 20);
  const Font font{Typeface::tabularDigits, 10};
  image.texts.push_back({2, 12, {{"1", font}}});
  image.texts.push_back({30, 1, {{"1", font}}});
  const AlphaBitmap bitmap = rasterise(image, engine, 1);
  // Blocks 5 wide and 7 high, standing on their baselines.
  AlphaBitmap expected(40, 20);
  for (int row = 0; row < 7; ++row) {
    for (int column = 0; column < 5; ++column) {
      expected.at(2 + column, 1 + row) = 255;
      expected.at(30 + column, 12 + row) = 255;
    }
  }
  EXPECT_EQ(bitmap, expected);
}

TEST(Rasterise, MakesNoPictureOfNoSizeOrScale) {
  test::FakeTextEngine engine;
  for (const double scale : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(), 1e9}) {
    EXPECT_EQ(rasterise(imageOf(20, 22), engine, scale), AlphaBitmap()) << scale;
  }
  EXPECT_EQ(rasterise(imageOf(0, 22), engine, 1), AlphaBitmap());
  EXPECT_EQ(rasterise(imageOf(-5, -5), engine, -1), AlphaBitmap());
}

TEST(Rasterise, MakesPicturesFromOnePixelToItsLimit) {
  test::FakeTextEngine engine;
  EXPECT_EQ(rasterise(imageOf(1, 1), engine, 1), AlphaBitmap(1, 1));
  EXPECT_EQ(rasterise(imageOf(16'384, 1), engine, 1).width, 16'384);
  EXPECT_EQ(rasterise(imageOf(16'385, 1), engine, 1), AlphaBitmap());
  EXPECT_EQ(rasterise(imageOf(1, 16'385), engine, 1), AlphaBitmap());
}

TEST(Rasterise, PutsAnImageIntoAFrame) {
  test::FakeTextEngine engine;
  StatusImage image = imageOf(20, 10);
  image.texts.push_back({2, 1, {{"7%", {Typeface::system, 5}}}});
  StatusImage moved = imageOf(26, 15);
  moved.texts.push_back({5, 3, {{"7%", {Typeface::system, 5}}}});
  const ImageFrame frame{.width = 26, .height = 15, .left = 3, .bottom = 2};
  EXPECT_EQ(rasterise(image, frame, engine, 2), rasterise(moved, engine, 2));
}

}  // namespace
}  // namespace vantora
