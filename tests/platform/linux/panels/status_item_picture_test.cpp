// SPDX-License-Identifier: MIT
#include "platform/linux/panels/status_item_picture.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <utility>

#include "platform/linux/status_item/block_text_engine.hpp"
#include "status/metric_formatter.hpp"
#include "status/status_renderer.hpp"

namespace vantora {
namespace {

using test::BlockTextEngine;

StyledText line(const std::string& text, double pointSize = 9) {
  return {{.text = text, .font = {.typeface = Typeface::tabularDigits, .pointSize = pointSize}}};
}

StatusModule module(const std::string& top, const std::string& bottom) {
  const auto statusLine = [](const std::string& text) {
    return StatusLine{MetricID::cpuUsage, text, MetricFormatter::isReading(text), {}};
  };
  StatusModule shown;
  shown.top = statusLine(top);
  shown.bottom = statusLine(bottom);
  return shown;
}

StatusPresentation presentation(std::vector<StatusModule> modules) {
  StatusPresentation shown;
  shown.modules = std::move(modules);
  return shown;
}

TEST(StatusItemPicture, WritesALabelOfAllTexts) {
  EXPECT_EQ(labelText(presentation({module("12%", "48°"), module("0,1M", ""), module("", "3")})),
            "12% 48° · 0,1M · 3");
  EXPECT_EQ(labelText({}), "VA");
}

TEST(StatusItemPicture, LabelsModulesWhoseTextsReachIntoEachOther) {
  AppConfiguration configuration;
  configuration.gap = 0;
  configuration.modules.resize(2);
  configuration.modules[0].top = MetricID::claudeWeeklyPercent;
  configuration.modules[0].bottom = MetricID::none;
  configuration.modules[0].fontTop = 13;
  configuration.modules[1].top = MetricID::cpuUsage;
  configuration.modules[1].bottom = MetricID::batteryTime;
  configuration.modules[1].fontBottom = 13;
  const WallTime now = wallTimeFromUnix(1'700'000'000);
  MetricSnapshot snapshot;
  snapshot.samples.set(MetricID::cpuUsage, MetricSample::valid(7, "fonte", now));
  snapshot.samples.set(MetricID::batteryTime, MetricSample::valid(165 * 60 + 59, "fonte", now));
  snapshot.claude.status = ClaudeQuotaStatus::stale;
  snapshot.claude.weeklyUsed = 0.1;
  snapshot.claude.lastSuccess = now;
  snapshot.claude.settings.oneDecimal = true;
  BlockTextEngine engine;
  EXPECT_EQ(labelText(StatusRenderer::render(configuration, snapshot, {30, now, engine})),
            "99.9%* · 7% 165:59");
}

TEST(StatusItemPicture, ShowsTheFirstModuleWithAReadingInASquare) {
  const StatusModule battery = module("—", "—");
  const StatusModule time = module("83%", "—");
  const StatusModule word = module("", "LOGIN");
  const StatusModule half = module("—", "");
  const SquareContent timeContent{line("83%"), line("—")};
  const SquareContent wordContent{{}, line("LOGIN")};
  const SquareContent batteryContent{line("—"), line("—")};
  EXPECT_EQ(squareContent(presentation({time, word})), timeContent) << "one reading of two does";
  EXPECT_EQ(squareContent(presentation({battery, half, time, word})), timeContent);
  EXPECT_EQ(squareContent(presentation({battery, word, time})), wordContent);
  EXPECT_EQ(squareContent(presentation({battery, half})), batteryContent)
      << "nothing has a reading";
}

TEST(StatusItemPicture, ShowsTheUsersModuleInASquareWhileItIsVisible) {
  StatusModule time = module("83%", "—");
  StatusModule word = module("", "LOGIN");
  time.id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000001");
  word.id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000002");
  const SquareContent wordContent{{}, line("LOGIN")};
  EXPECT_EQ(squareContent(presentation({time, word}), word.id), wordContent);
  EXPECT_EQ(squareContent(presentation({time}), word.id), (SquareContent{line("83%"), line("—")}));
}

TEST(StatusItemPicture, SetsTheSquaresTextsAsThePictureDoes) {
  StatusModule rate = module("0,1M", "");
  rate.top.metric = MetricID::upload;
  rate.top.font = {Typeface::monospaced, 10};
  const SquareContent content = squareContent(presentation({rate}));
  EXPECT_EQ(content.top,
            (StyledText{{"0,1", {Typeface::monospaced, 10}}, {"M", {Typeface::monospaced, 7}}}));
}

TEST(StatusItemPicture, ShowsTheMarkInASquareWhereThereIsNoModule) {
  EXPECT_EQ(squareContent({}), (SquareContent{{{"VA", {Typeface::system, 9}}}, {}}));
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

TEST(StatusItemPicture, DrawsASingleLineInTheMiddleOfASquare) {
  BlockTextEngine engine;
  const PlacedText placed = squareImage({{}, line("85%")}, 48, engine).texts.front();
  const double digitHeight = placed.text.front().font.pointSize * 0.72;
  EXPECT_NEAR(placed.y + digitHeight / 2, 24, 1e-9);
  EXPECT_NEAR(placed.x + engine.width(placed.text) / 2, 24, 1e-9);
  EXPECT_TRUE(squareImage({}, 22, engine).texts.empty());
}

TEST(StatusItemPicture, KeepsASquaresTextsAtOneSizeUpToThreeSigns) {
  BlockTextEngine engine;
  const auto size = [&](const std::string& text) {
    return squareImage({line(text), line("—")}, 22, engine)
        .texts.back()
        .text.front()
        .font.pointSize;
  };
  EXPECT_EQ(size("9%"), size("10%"));
  EXPECT_EQ(size("5"), size("10%"));
  EXPECT_LT(size("100%"), size("10%")) << "the width of the square decides";
}

TEST(StatusItemPicture, DrawsSquaresInSizesOfHalfAPointThatManyTextsShare) {
  BlockTextEngine engine;
  for (const double side : {16.0, 22.0, 24.0, 32.0, 44.0, 48.0}) {
    for (const char* text : {"9%", "48°C", "2:34", "0,12M", "12:34", "LOGIN"}) {
      const StatusImage image = squareImage({line(text), line("—")}, side, engine);
      for (const PlacedText& placed : image.texts) {
        const double halves = placed.text.front().font.pointSize * 2;
        EXPECT_NEAR(halves, std::round(halves), 1e-9) << text << " at " << side;
      }
    }
  }
}

TEST(StatusItemPicture, MakesASquareOfEachModule) {
  StatusModule processor = module("7%", "48°C");
  processor.id = *UUID::parse("AAAAAAAA-0000-4000-8000-000000000001");
  processor.bottom.metric = MetricID::cpuTemperature;
  StatusModule battery = module("", "83%");
  battery.top.metric = MetricID::none;
  battery.bottom.metric = MetricID::batteryPercent;
  StatusPresentation shown = presentation({processor, battery});
  shown.toolTip = "one line\nfor each\nColeta pausada";
  const std::vector<ModuleSquare> squares = moduleSquares(shown);
  ASSERT_EQ(squares.size(), 2U);
  EXPECT_EQ(squares[0].id, "vantora-AAAAAAAA-0000-4000-8000-000000000001");
  EXPECT_EQ(squares[0].title, "Vantora 1: CPU · uso total, CPU · maior temperatura");
  EXPECT_EQ(squares[0].toolTip,
            "CPU · uso total: 7%\nCPU · maior temperatura: 48°C\nColeta pausada");
  EXPECT_EQ(squares[0].content, (SquareContent{line("7%"), line("48°C")}));
  EXPECT_EQ(squares[1].title, "Vantora 2: Bateria · porcentagem");
  EXPECT_EQ(squares[1].content, (SquareContent{{}, line("83%")}));
}

TEST(StatusItemPicture, NumbersSquaresSoThatTheirTitlesSort) {
  const std::vector<ModuleSquare> squares =
      moduleSquares(presentation(std::vector<StatusModule>(11, module("7%", ""))));
  EXPECT_TRUE(squares[0].title.starts_with("Vantora 01: ")) << squares[0].title;
  EXPECT_TRUE(squares[10].title.starts_with("Vantora 11: ")) << squares[10].title;
}

TEST(StatusItemPicture, KeepsTheProportionsOfALinesRuns) {
  BlockTextEngine engine;
  StyledText text = line("0,1", 9);
  text.push_back({.text = "M", .font = {.typeface = Typeface::monospaced, .pointSize = 6}});
  const StyledText drawn = squareImage({text, {}}, 32, engine).texts.front().text;
  EXPECT_NEAR(drawn[1].font.pointSize / drawn[0].font.pointSize, 6.0 / 9.0, 1e-9);
}

TEST(StatusItemPicture, PutsAnImageIntoTheMiddleOfAWindowOnWholePoints) {
  const StatusImage image{.width = 60, .height = 22, .texts = {}};
  const ImageFrame frame = centredFrame(image, 67, 27);
  EXPECT_EQ(frame.width, 67);
  EXPECT_EQ(frame.height, 27);
  EXPECT_EQ(frame.left, 3);
  EXPECT_EQ(frame.bottom, 2);
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
