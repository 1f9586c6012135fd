// SPDX-License-Identifier: MIT
#include "status/drawn_image.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/fake_text_engine.hpp"

namespace vantora {
namespace {

const Font lineFont{Typeface::tabularDigits, 9};
const ImageFrame itemFrame{.width = 126, .height = 22, .left = 3};

PlacedText line(double x, double y, std::string text) {
  return {x, y, {{std::move(text), lineFont}}};
}

/// Three columns of two lines.
StatusImage threeModules() {
  StatusImage image{.width = 120, .height = 22, .texts = {}};
  for (int module = 0; module < 3; ++module) {
    const double x = 4 + 40 * module;
    image.texts.push_back(line(x, 12, "17%"));
    image.texts.push_back(line(x, 2, "41°C"));
  }
  return image;
}

class DrawnImageTest : public testing::Test {
 protected:
  /// The number of lines that were drawn, after a look at the pixels.
  int draw(const StatusImage& image, const ImageFrame& place = itemFrame, double scale = 2) {
    engine_.drawnLines = 0;
    const AlphaBitmap& bitmap = drawn_.draw(image, place, engine_, scale);
    const int lines = engine_.drawnLines;
    test::FakeTextEngine other;
    EXPECT_EQ(bitmap, rasterise(image, place, other, scale));
    return lines;
  }

  test::FakeTextEngine engine_;
  DrawnImage drawn_;
};

TEST_F(DrawnImageTest, DrawsEveryLineFirst) {
  EXPECT_EQ(draw(threeModules()), 6);
}

TEST_F(DrawnImageTest, DrawsNothingTwice) {
  draw(threeModules());
  EXPECT_EQ(draw(threeModules()), 0);
}

TEST_F(DrawnImageTest, DrawsOnlyTheModuleThatChanged) {
  StatusImage image = threeModules();
  draw(image);
  image.texts[2].text[0].text = "8%";
  image.texts[2].x += 3;
  EXPECT_EQ(draw(image), 2) << "both lines, which share columns";
  image.texts[5].text[0].text = "42°C";
  EXPECT_EQ(draw(image), 2);
  EXPECT_EQ(draw(image), 0);
}

TEST_F(DrawnImageTest, DrawsALineAloneThatSharesNoColumn) {
  StatusImage image = threeModules();
  image.texts[0].x = 30;
  image.texts[0].text[0].text = "9";
  draw(image);
  image.texts[0].text[0].text = "8";
  EXPECT_EQ(draw(image), 1);
}

TEST_F(DrawnImageTest, DrawsALineThatNoLongerHasAnyText) {
  StatusImage image = threeModules();
  draw(image);
  image.texts[0].text[0].text = "";
  image.texts[1].text[0].text = "";
  EXPECT_EQ(draw(image), 2);
}

TEST_F(DrawnImageTest, DrawsAgainWhereALineReachesIntoWhatWasKept) {
  StatusImage image = threeModules();
  draw(image);
  image.texts[0].text[0].text = "100% de tudo";
  EXPECT_GE(draw(image), 6);
  image.texts[0].text[0].text = "17%";
  EXPECT_EQ(draw(image), 4) << "the module itself and the one that the line covered";
}

TEST_F(DrawnImageTest, DrawsAllInAnotherFrameAtAnotherScaleAndOfAnotherNumberOfLines) {
  StatusImage image = threeModules();
  draw(image);
  ImageFrame higher = itemFrame;
  higher.height = 30;
  higher.bottom = 4;
  EXPECT_EQ(draw(image, higher), 6);
  EXPECT_EQ(draw(image, higher, 1), 6);
  image.texts.pop_back();
  EXPECT_EQ(draw(image, higher, 1), 5);
}

TEST_F(DrawnImageTest, DrawsNothingIntoAPictureOfNoSize) {
  draw(threeModules());
  EXPECT_EQ(draw(threeModules(), ImageFrame{}), 0);
  EXPECT_EQ(draw(threeModules(), ImageFrame{}), 0);
  EXPECT_EQ(draw(threeModules()), 6);
}

/// Has its characters only later.
class LateTextEngine final : public TextEngine {
 public:
  [[nodiscard]] double width(const StyledText& text) override { return engine_.width(text); }
  [[nodiscard]] LineMetrics metrics(const Font& wanted) override { return engine_.metrics(wanted); }
  InkSpan draw(AlphaBitmap& target, double scale, double x, double y,
               const StyledText& text) override {
    InkSpan span = engine_.draw(target, scale, x, y, isLate ? StyledText() : text);
    span.isFinal = !isLate;
    return span;
  }

  bool isLate = true;

 private:
  test::FakeTextEngine engine_;
};

TEST(DrawnImage, DrawsAgainWhatWasNotDrawnForGood) {
  LateTextEngine engine;
  DrawnImage drawn;
  const StatusImage image = threeModules();
  EXPECT_EQ(drawn.draw(image, itemFrame, engine, 1), rasterise({}, itemFrame, engine, 1));
  engine.isLate = false;
  EXPECT_EQ(drawn.draw(image, itemFrame, engine, 1), rasterise(image, itemFrame, engine, 1));
}

}  // namespace
}  // namespace vantora
