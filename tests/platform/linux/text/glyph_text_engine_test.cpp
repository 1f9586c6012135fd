// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_text_engine.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "contract/text_engine_contract.hpp"
#include "platform/linux/fonts/dejavu_fonts.hpp"
#include "platform/linux/fonts/freetype_text_engine.hpp"
#include "support/live_memory.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace test {
namespace {

INSTANTIATE_TEST_SUITE_P(
    Freetype, TextEngineContract,
    ::testing::Values(
        TextEngineMaker{"DejaVu",
                        [] { return std::make_unique<FreetypeTextEngine>(dejavuFonts()); }},
        TextEngineMaker{"WithoutFonts",
                        [] { return std::make_unique<FreetypeTextEngine>(FontSelection()); }}),
    [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace test

namespace {

using test::dejavuFonts;

StyledText line(std::string text, Typeface typeface = Typeface::tabularDigits, double size = 9) {
  return {{std::move(text), {typeface, size}}};
}

AlphaBitmap draw(TextEngine& engine, const StyledText& text, double scale = 2, double x = 2,
                 double y = 5) {
  AlphaBitmap bitmap(120, 40);
  engine.draw(bitmap, scale, x, y, text);
  return bitmap;
}

int inkOf(const AlphaBitmap& bitmap) {
  int sum = 0;
  for (const std::uint8_t pixel : bitmap.pixels) {
    sum += pixel;
  }
  return sum;
}

std::string write(const std::filesystem::path& path, std::string_view bytes) {
  test::writeBytes(path, bytes);
  return path;
}

TEST(GlyphTextEngine, MeasuresAsTheFontSays) {
  FreetypeTextEngine engine(dejavuFonts());
  // DejaVu Sans: digits 1303 of 2048 units, the percent sign 1946; the mono typeface 1233.
  EXPECT_NEAR(engine.width(line("17%")), (2 * 1303 + 1946) / 2048.0 * 9, 1e-4);
  EXPECT_NEAR(engine.width(line("0,04", Typeface::monospaced)), 4 * 1233 / 2048.0 * 9, 1e-4);
}

TEST(GlyphTextEngine, CentresTheDigitsInItsLineBox) {
  FreetypeTextEngine engine(dejavuFonts());
  const LineMetrics metrics = engine.metrics({Typeface::tabularDigits, 9});
  EXPECT_NEAR(metrics.ascent + metrics.descent, 11, 1e-9);
  const double digitHeight = 1493 / 2048.0 * 9;
  EXPECT_NEAR(metrics.ascent - digitHeight, metrics.descent, 1e-3);
}

TEST(GlyphTextEngine, HasOneLineBoxForAllFaces) {
  // So that lines in different typefaces share a baseline.
  FreetypeTextEngine engine(dejavuFonts());
  const LineMetrics text = engine.metrics({Typeface::tabularDigits, 9});
  for (const Typeface typeface : {Typeface::system, Typeface::monospaced}) {
    EXPECT_EQ(engine.metrics({typeface, 9}).ascent, text.ascent);
    EXPECT_EQ(engine.metrics({typeface, 9}).descent, text.descent);
  }
}

TEST(GlyphTextEngine, PutsBaselinesOnWholeRowsOfPixels) {
  FreetypeTextEngine engine(dejavuFonts());
  EXPECT_EQ(draw(engine, line("E"), 1, 2, 5.4), draw(engine, line("E"), 1, 2, 5));
  EXPECT_EQ(draw(engine, line("E"), 2, 2, 5.2), draw(engine, line("E"), 2, 2, 5));
  EXPECT_NE(draw(engine, line("E"), 1, 2, 5.6), draw(engine, line("E"), 1, 2, 5));
}

TEST(GlyphTextEngine, MeetsThePixelRowsWithItsHorizontals) {
  FreetypeTextEngine engine(dejavuFonts());
  const auto strongest = [](const AlphaBitmap& bitmap, int row) {
    const auto start = bitmap.pixels.begin() + static_cast<std::ptrdiff_t>(row) * bitmap.width;
    return *std::max_element(start, start + bitmap.width);
  };
  for (const int scale : {1, 2, 3}) {
    // The foot of an E fills the row above the baseline and nothing of the one below; the
    // stem alone reaches into the row above that.
    const AlphaBitmap letter = draw(engine, line("E"), scale, 2, 3);
    const int baseline = letter.height - 3 * scale;
    EXPECT_EQ(strongest(letter, baseline), 0) << scale;
    EXPECT_GT(letter.at(5 * scale, baseline - 1), 160) << scale;
    EXPECT_EQ(letter.at(5 * scale, baseline - 1 - scale), 0) << scale;
  }
  // Left where the outline has it, a dash would spread over two grey rows.
  const AlphaBitmap dash = draw(engine, line("—"), 1, 2, 3);
  int inkedRows = 0;
  for (int row = 0; row < dash.height; ++row) {
    inkedRows += strongest(dash, row) > 0 ? 1 : 0;
  }
  EXPECT_EQ(inkedRows, 1);
}

TEST(GlyphTextEngine, PutsLettersOnQuartersOfAPixel) {
  FreetypeTextEngine engine(dejavuFonts());
  EXPECT_EQ(draw(engine, line("8"), 1, 2.1, 5), draw(engine, line("8"), 1, 2, 5));
  EXPECT_NE(draw(engine, line("8"), 1, 2.25, 5), draw(engine, line("8"), 1, 2, 5));
  // A whole pixel further everything is the same.
  const AlphaBitmap here = draw(engine, line("8"), 1, -2.75, 5);
  const AlphaBitmap there = draw(engine, line("8"), 1, 7.25, 5);
  for (int row = 0; row < here.height; ++row) {
    for (int column = 0; column < 20; ++column) {
      EXPECT_EQ(here.at(column, row), there.at(column + 10, row));
    }
  }
}

TEST(GlyphTextEngine, ThickensAFaceThatIsLighterThanMedium) {
  FontSelection regular = dejavuFonts();
  regular.text.front().missingWeight = 0;
  FreetypeTextEngine thin(regular);
  FreetypeTextEngine medium(dejavuFonts());
  const AlphaBitmap before = draw(thin, line("88%"));
  const AlphaBitmap after = draw(medium, line("88%"));
  EXPECT_GT(inkOf(after), inkOf(before) * 110 / 100);
  EXPECT_LT(inkOf(after), inkOf(before) * 130 / 100);
  EXPECT_EQ(thin.width(line("88%")), medium.width(line("88%")));
}

TEST(GlyphTextEngine, BorrowsLettersFromTheFontsBehindTheFirst) {
  // DejaVu Sans has Georgian letters and the mono typeface has them, too; Arabic digits in
  // their Persian form only the former: U+1D7D8, a double-struck zero.
  const StyledText rare = line("\U0001D7D8", Typeface::monospaced);
  FontSelection fonts = dejavuFonts();
  FreetypeTextEngine alone(fonts);
  fonts.monospaced.push_back(fonts.text.front());
  FreetypeTextEngine helped(fonts);
  EXPECT_NE(draw(helped, rare), draw(alone, rare));
  EXPECT_EQ(draw(helped, rare), draw(helped, line("\U0001D7D8", Typeface::tabularDigits)));
  EXPECT_EQ(draw(helped, line("0", Typeface::monospaced)),
            draw(alone, line("0", Typeface::monospaced)));
}

TEST(GlyphTextEngine, ShowsABoxForWhatNoFontHas) {
  FreetypeTextEngine engine(dejavuFonts());
  const AlphaBitmap box = draw(engine, line("\U0010FFFE"));
  EXPECT_GT(inkOf(box), 0);
  EXPECT_EQ(box, draw(engine, line("\U0010FFFD")));
  EXPECT_NEAR(engine.width(line("\U0010FFFE")), 0.6 * 9, 1e-4);
}

TEST(GlyphTextEngine, KeepsTheLayoutWithoutAnyFont) {
  FreetypeTextEngine engine({});
  EXPECT_NEAR(engine.width(line("166:39")), 6 * 0.6 * 9, 1e-4);
  EXPECT_GT(inkOf(draw(engine, line("17%"))), 0);
}

TEST(GlyphTextEngine, TreatsAFileThatIsNoFontAsNoFont) {
  const test::TemporaryFolder folder;
  FreetypeTextEngine without({});
  const AlphaBitmap boxes = draw(without, line("17%"));
  const std::string sound = test::readBytes(test::dejavuSans);
  for (const std::string& path :
       {std::string("/nowhere/font.ttf"), std::string("/"), std::string("/dev/null"),
        write(folder / "empty.ttf", ""), write(folder / "text.ttf", "not a font"),
        write(folder / "head.ttf", sound.substr(0, 200))}) {
    FreetypeTextEngine engine({{{path, 0, {}, 0}}, {{path, 0, {}, 0}}});
    EXPECT_EQ(draw(engine, line("17%")), boxes) << path;
  }
}

TEST(GlyphTextEngine, TreatsAnIndexOutOfRangeAsNoFont) {
  FreetypeTextEngine without({});
  FreetypeTextEngine engine({{{test::dejavuSans, 7, {}, 0}}, {}});
  EXPECT_EQ(draw(engine, line("17%")), draw(without, line("17%")));
}

TEST(GlyphTextEngine, IgnoresVariationsOfAFaceThatHasNone) {
  FontSelection varied = dejavuFonts();
  varied.text.front().variations = "wght=500,=,wdth,opsz=9=,";
  FreetypeTextEngine engine(varied);
  FreetypeTextEngine plain(dejavuFonts());
  EXPECT_EQ(draw(engine, line("17%")), draw(plain, line("17%")));
}

TEST(GlyphTextEngine, SurvivesDamagedFonts) {
  const test::TemporaryFolder folder;
  const std::string sound = test::readBytes(test::dejavuSans);
  ASSERT_GT(sound.size(), 100'000U);
  for (int seed = 1; seed <= 40; ++seed) {
    std::string damaged = sound;
    if (seed % 4 == 0) {
      damaged.resize(sound.size() * static_cast<std::size_t>(seed) / 41);
    }
    // A linear congruential sequence: the same damage in each run.
    std::uint32_t state = static_cast<std::uint32_t>(seed) * 2654435761U;
    for (int hit = 0; hit < 2000; ++hit) {
      state = state * 1664525U + 1013904223U;
      // Behind the table directory for the most part, which FreeType checks.
      damaged[(hit % 50 == 0 ? 0 : 400) + state % (damaged.size() - 400)] =
          static_cast<char>(state >> 24U);
    }
    const FontFile file{write(folder / "damaged.ttf", damaged), 0, {}, 20};
    FreetypeTextEngine engine({{file}, {file}});
    EXPECT_TRUE(std::isfinite(engine.width(line("0123456789%°CM—"))));
    [[maybe_unused]] const AlphaBitmap bitmap = draw(engine, line("0123456789%°CM—"));
  }
}

TEST(GlyphTextEngine, GoesOnWithWhatItKnowsWhenItsFontVanishes) {
  const test::TemporaryFolder folder;
  const std::string path = write(folder / "font.ttf", test::readBytes(test::dejavuSans));
  FreetypeTextEngine engine({{{path, 0, {}, 20}}, {}});
  const AlphaBitmap before = draw(engine, line("17"));
  std::filesystem::remove(path);
  EXPECT_EQ(draw(engine, line("17")), before);
  // All digits came with the first one.
  FreetypeTextEngine intact(dejavuFonts());
  EXPECT_EQ(draw(engine, line("71")), draw(intact, line("71")));
}

TEST(GlyphTextEngine, DrawsAtAnySize) {
  FreetypeTextEngine engine(dejavuFonts());
  const AlphaBitmap before = draw(engine, line("17%"));
  for (int step = 0; step < 200; ++step) {
    const double size = 0.01 + step * step * 0.1;
    [[maybe_unused]] const AlphaBitmap bitmap =
        draw(engine, line("17%", Typeface::monospaced, size), 1 + step % 3);
  }
  // ... and comes back to one that it gave up meanwhile.
  EXPECT_EQ(draw(engine, line("17%")), before);
}

/// Answers advances, and pictures only later.
class LateGlyphs final : public GlyphSource {
 public:
  [[nodiscard]] std::optional<GlyphAnswer> draw(const GlyphRequest& request) override {
    return request.size != 0 && isLate ? std::nullopt : glyphs_.draw(request);
  }

  bool isLate = true;

 private:
  FreetypeGlyphs glyphs_{dejavuFonts()};
};

TEST(GlyphTextEngine, SaysThatADrawingIsNotFinalWhileItHasNoPictureOfACharacter) {
  LateGlyphs glyphs;
  GlyphTextEngine engine(glyphs);
  EXPECT_GT(engine.width(line("17%")), 0);
  AlphaBitmap boxes(120, 40);
  const InkSpan span = engine.draw(boxes, 2, 2, 5, line("17%"));
  EXPECT_FALSE(span.isFinal);
  EXPECT_LT(span.begin, span.end) << "boxes are ink";
  glyphs.isLate = false;
  EXPECT_TRUE(engine.draw(boxes, 2, 2, 5, line("17%")).isFinal);
}

/// Counts how often it was asked.
class CountedGlyphs final : public GlyphSource {
 public:
  [[nodiscard]] std::optional<GlyphAnswer> draw(const GlyphRequest& request) override {
    ++asked;
    return glyphs_.draw(request);
  }

  int asked = 0;

 private:
  FreetypeGlyphs glyphs_{dejavuFonts()};
};

// The source is a process that must be started.
TEST(GlyphTextEngine, KeepsTheSizesOfARowOfSquares) {
  CountedGlyphs glyphs;
  GlyphTextEngine engine(glyphs);
  // Six sizes of squares, each with lines of six sizes.
  const auto drawAll = [&] {
    for (int size = 0; size < 36; ++size) {
      draw(engine, line("17%", Typeface::tabularDigits, 4 + size / 2.0), 1);
    }
  };
  drawAll();
  const int asked = glyphs.asked;
  drawAll();
  EXPECT_EQ(glyphs.asked, asked);
}

TEST(GlyphTextEngine, AllocatesNothingForCharactersThatItHasDrawn) {
  FreetypeTextEngine engine(dejavuFonts());
  const StyledText first = line("17% —", Typeface::tabularDigits, 9);
  const StyledText second = line("71%—", Typeface::tabularDigits, 9);
  AlphaBitmap bitmap(120, 40);
  engine.draw(bitmap, 2, 2, 5, first);
  const std::size_t before = test::allocations();
  EXPECT_GT(engine.width(second), 0);
  engine.draw(bitmap, 2, 2, 5, second);
  EXPECT_EQ(test::allocations(), before);
}

}  // namespace
}  // namespace vantora
