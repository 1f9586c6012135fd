// SPDX-License-Identifier: MIT
#include "platform/linux/status_item_picture.hpp"

#include <gtest/gtest.h>

#include <numeric>

#include "platform/linux/block_text_engine.hpp"

namespace vantora {
namespace {

using test::BlockTextEngine;

StyledText line(const std::string& text, double pointSize = 9) {
  return {{.text = text, .font = {.face = FontFace::tabularDigits, .pointSize = pointSize}}};
}

// Two lines of a module: top at 13, bottom at 3, as in a picture of 22 points.
void addModule(StatusImage& image, double x, const std::string& top, const std::string& bottom) {
  image.texts.push_back({x, 3, line(bottom)});
  image.texts.push_back({x, 13, line(top)});
}

TEST(StatusItemPicture, FindsTheModulesOfAnImage) {
  BlockTextEngine engine;
  StatusImage image{.width = 100, .height = 22, .texts = {}};
  addModule(image, 2, "12%", "48°");
  addModule(image, 40, "0,1M", "2,5M");
  const auto columns = moduleColumns(image, engine);
  ASSERT_EQ(columns.size(), 2U);
  EXPECT_EQ(columns[0], (ModuleColumn{line("12%"), line("48°")}));
  EXPECT_EQ(columns[1], (ModuleColumn{line("0,1M"), line("2,5M")}));
}

TEST(StatusItemPicture, KeepsNeighboursApartWhenEachHasOneLineOnly) {
  BlockTextEngine engine;
  StatusImage image{.width = 100, .height = 22, .texts = {}};
  addModule(image, 2, "", "48°");
  addModule(image, 40, "0,1M", "");
  const auto columns = moduleColumns(image, engine);
  ASSERT_EQ(columns.size(), 2U);
  EXPECT_EQ(columns[0], (ModuleColumn{{}, line("48°")}));
  EXPECT_EQ(columns[1], (ModuleColumn{line("0,1M"), {}}));
}

TEST(StatusItemPicture, PairsLinesThatAreAlignedToTheRight) {
  BlockTextEngine engine;
  StatusImage image{.width = 100, .height = 22, .texts = {}};
  image.texts.push_back({20, 3, line("5%")});
  image.texts.push_back({9.2, 13, line("100%")});
  const auto columns = moduleColumns(image, engine);
  ASSERT_EQ(columns.size(), 1U);
  EXPECT_EQ(columns[0], (ModuleColumn{line("100%"), line("5%")}));
}

TEST(StatusItemPicture, HasNoModulesWithoutTexts) {
  BlockTextEngine engine;
  EXPECT_TRUE(moduleColumns({.width = 20, .height = 22, .texts = {}}, engine).empty());
}

TEST(StatusItemPicture, WritesALabelOfAllTexts) {
  EXPECT_EQ(labelText({{line("12%"), line("48°")}, {line("0,1M"), {}}, {{}, line("3")}}),
            "12% 48° · 0,1M · 3");
  EXPECT_EQ(labelText({}), "");
}

TEST(StatusItemPicture, ShowsTheFirstModuleWithAReadingInASquare) {
  const ModuleColumn battery{line("—"), line("—")};
  const ModuleColumn time{line("83%"), line("—")};
  const ModuleColumn word{{}, line("LOGIN")};
  const ModuleColumn half{line("—"), {}};
  EXPECT_EQ(squareModule({time, word}), time) << "one reading of two does";
  EXPECT_EQ(squareModule({battery, half, time, word}), time);
  EXPECT_EQ(squareModule({battery, word, time}), word);
  EXPECT_EQ(squareModule({battery, half}), battery) << "nothing has a reading";
  EXPECT_EQ(squareModule({}), ModuleColumn{});
}

TEST(StatusItemPicture, DrawsAModuleInsideOfASquareOfAnySize) {
  BlockTextEngine engine;
  for (const double side : {16.0, 22.0, 24.0, 32.0, 48.0}) {
    const StatusImage image = squareImage({line("100%"), line("1,25M")}, side, engine);
    ASSERT_EQ(image.texts.size(), 2U);
    for (const PlacedText& text : image.texts) {
      EXPECT_GE(text.x, 1.0 - 1e-9);
      EXPECT_LE(text.x + engine.width(text.text), side - 1.0 + 1e-9);
      EXPECT_GE(text.y, 1.0);
      EXPECT_LE(text.y + text.text.front().font.pointSize * 0.72, side - 1.0);
    }
    EXPECT_GT(image.texts[1].y, image.texts[0].y) << "the top line is drawn above the bottom one";
    EXPECT_EQ(image.texts[1].text.front().text, "100%");
  }
}

TEST(StatusItemPicture, DrawsASingleLineLargerThanOneOfTwo) {
  BlockTextEngine engine;
  const auto size = [&](const ModuleColumn& column) {
    return squareImage(column, 48, engine).texts.back().text.front().font.pointSize;
  };
  EXPECT_GT(size({line("5%"), {}}), size({line("5%"), line("6%")}));
  EXPECT_TRUE(squareImage({}, 22, engine).texts.empty());
}

TEST(StatusItemPicture, KeepsTheProportionsOfALinesRuns) {
  BlockTextEngine engine;
  StyledText text = line("0,1", 9);
  text.push_back({.text = "M", .font = {.face = FontFace::monospaced, .pointSize = 6}});
  const StyledText drawn = squareImage({text, {}}, 32, engine).texts.front().text;
  EXPECT_NEAR(drawn[1].font.pointSize / drawn[0].font.pointSize, 6.0 / 9.0, 1e-9);
}

TEST(StatusItemPicture, PutsAnImageIntoTheMiddleOfAWindowOnWholePoints) {
  StatusImage image{.width = 60, .height = 22, .texts = {}};
  image.texts.push_back({2.5, 3, line("12%")});
  const StatusImage centred = centredImage(image, 67, 27);
  EXPECT_EQ(centred.width, 67);
  EXPECT_EQ(centred.height, 27);
  EXPECT_EQ(centred.texts[0].x, 5.5);
  EXPECT_EQ(centred.texts[0].y, 5);
}

TEST(StatusItemPicture, DrawsTheMarkAtEverySizeWithAFreeMargin) {
  for (const int side : {16, 22, 32, 48}) {
    const AlphaBitmap mark = applicationMark(side);
    EXPECT_EQ(mark.width, side);
    EXPECT_EQ(mark.height, side);
    EXPECT_GT(std::accumulate(mark.pixels.begin(), mark.pixels.end(), 0), 0);
    for (int at = 0; at < side; ++at) {
      EXPECT_EQ(mark.at(at, 0), 0);
      EXPECT_EQ(mark.at(at, side - 1), 0);
      EXPECT_EQ(mark.at(0, at), 0);
      EXPECT_EQ(mark.at(side - 1, at), 0);
    }
  }
}

std::vector<std::uint8_t> tinted(const AlphaBitmap& bitmap, Ink ink, double radius = 0) {
  std::vector<std::uint8_t> pixels(bitmap.pixels.size() * 4);
  tint(bitmap, ink, radius, pixels);
  return pixels;
}

TEST(StatusItemPicture, TintsWithTheInksAlphaInNetworkByteOrder) {
  AlphaBitmap bitmap(2, 1);
  bitmap.at(0, 0) = 200;
  const std::vector<std::uint8_t> light{200, 0xF5, 0xF5, 0xF5, 0, 0xF5, 0xF5, 0xF5};
  const std::vector<std::uint8_t> dark{200, 0x1E, 0x1E, 0x1E, 0, 0x1E, 0x1E, 0x1E};
  EXPECT_EQ(tinted(bitmap, Ink::light), light);
  EXPECT_EQ(tinted(bitmap, Ink::dark), dark);
}

TEST(StatusItemPicture, DrawsAPlateWithRoundedCornersBehindTheInk) {
  AlphaBitmap bitmap(20, 20);
  bitmap.at(10, 10) = 255;
  const auto pixels = tinted(bitmap, Ink::lightOnPlate, 5);
  const auto pixel = [&](int x, int y) {
    const auto index = static_cast<std::size_t>(y * 20 + x) * 4;
    return std::pair<int, int>(pixels[index], pixels[index + 1]);
  };
  EXPECT_EQ(pixel(10, 10), std::pair(255, 0xF5)) << "full ink hides the plate";
  EXPECT_EQ(pixel(3, 10), std::pair(235, 0x26));
  EXPECT_EQ(pixel(10, 0), std::pair(235, 0x26)) << "the plate reaches the edges";
  EXPECT_EQ(pixel(0, 0).first, 0);
  EXPECT_EQ(pixel(19, 0).first, 0);
  EXPECT_EQ(pixel(0, 19).first, 0);
  EXPECT_EQ(pixel(19, 19).first, 0);
  EXPECT_EQ(pixel(1, 1), pixel(18, 18)) << "all corners are alike";
}

TEST(StatusItemPicture, MixesThinInkWithThePlate) {
  AlphaBitmap bitmap(12, 12);
  bitmap.at(6, 6) = 128;
  const auto pixels = tinted(bitmap, Ink::lightOnPlate, 0);
  const std::size_t index = (6 * 12 + 6) * 4;
  EXPECT_GT(pixels[index], 235);
  EXPECT_GT(pixels[index + 1], 0x26);
  EXPECT_LT(pixels[index + 1], 0xF5);
}

TEST(StatusItemPicture, TintsAnEmptyPicture) {
  EXPECT_TRUE(tinted(AlphaBitmap(0, 0), Ink::lightOnPlate, 5).empty());
}

}  // namespace
}  // namespace vantora
