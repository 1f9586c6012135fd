// SPDX-License-Identifier: MIT
//
// What every text engine owes the renderer. A test of an engine instantiates the suite
// with a maker of it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "status/text_engine.hpp"

namespace vantora::test {

struct TextEngineMaker {
  std::string name;
  std::function<std::unique_ptr<TextEngine>()> make;
};

struct TextEngineContract : ::testing::TestWithParam<TextEngineMaker> {
  static constexpr std::array typefaces{Typeface::system, Typeface::tabularDigits,
                                        Typeface::monospaced};

  static StyledText line(std::string text, Typeface typeface = Typeface::tabularDigits,
                         double pointSize = 9) {
    return {{std::move(text), {typeface, pointSize}}};
  }

  /// The columns and rows that hold ink; end is one past.
  struct Ink {
    int left = std::numeric_limits<int>::max();
    int right = 0;
    int top = std::numeric_limits<int>::max();
    int bottom = 0;
    [[nodiscard]] bool isEmpty() const { return right == 0; }
  };

  static Ink inkOf(const AlphaBitmap& bitmap) {
    Ink ink;
    for (int row = 0; row < bitmap.height; ++row) {
      for (int column = 0; column < bitmap.width; ++column) {
        if (bitmap.at(column, row) != 0) {
          ink.left = std::min(ink.left, column);
          ink.right = std::max(ink.right, column + 1);
          ink.top = std::min(ink.top, row);
          ink.bottom = std::max(ink.bottom, row + 1);
        }
      }
    }
    return ink;
  }

  std::unique_ptr<TextEngine> engine = GetParam().make();
};

TEST_P(TextEngineContract, GivesAnEmptyLineNoWidthAndNoInk) {
  EXPECT_EQ(engine->width({}), 0);
  EXPECT_EQ(engine->width(line("")), 0);
  AlphaBitmap bitmap(40, 20);
  engine->draw(bitmap, 1, 2, 5, {});
  engine->draw(bitmap, 1, 2, 5, line(""));
  EXPECT_TRUE(inkOf(bitmap).isEmpty());
}

TEST_P(TextEngineContract, AddsUpTheWidthsOfItsRuns) {
  const StyledText first = line("0,04", Typeface::monospaced);
  const StyledText second = line("M", Typeface::monospaced, 6.3);
  const StyledText both{first.front(), second.front()};
  EXPECT_GT(engine->width(first), 0);
  EXPECT_NEAR(engine->width(both), engine->width(first) + engine->width(second), 1e-9);
}

TEST_P(TextEngineContract, SetsAllDigitsInOneWidth) {
  for (const Typeface typeface : {Typeface::tabularDigits, Typeface::monospaced}) {
    for (const char* digit : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
      EXPECT_NEAR(engine->width(line(digit, typeface)), engine->width(line("0", typeface)), 1e-6)
          << digit;
    }
  }
}

TEST_P(TextEngineContract, SetsEveryMonospacedCharacterInOneWidth) {
  const double zero = engine->width(line("0", Typeface::monospaced));
  for (const char* character : {",", "M", ">", "1", "—"}) {
    EXPECT_NEAR(engine->width(line(character, Typeface::monospaced)), zero, 1e-6) << character;
  }
}

TEST_P(TextEngineContract, GrowsWithThePointSize) {
  for (const Typeface typeface : typefaces) {
    EXPECT_NEAR(engine->width(line("166:39", typeface, 12)),
                1.5 * engine->width(line("166:39", typeface, 8)), 0.5);
    const LineMetrics small = engine->metrics({typeface, 8});
    const LineMetrics large = engine->metrics({typeface, 12});
    EXPECT_GT(small.ascent, 0);
    EXPECT_GT(small.descent, 0);
    EXPECT_NEAR(large.ascent, 1.5 * small.ascent, 0.5);
    EXPECT_NEAR(large.descent, 1.5 * small.descent, 0.5);
  }
}

TEST_P(TextEngineContract, HasALineBoxOfAboutTheFontsSize) {
  for (const Typeface typeface : typefaces) {
    const LineMetrics metrics = engine->metrics({typeface, 10});
    EXPECT_GT(metrics.ascent, 7);
    EXPECT_LT(metrics.ascent + metrics.descent, 15);
  }
}

TEST_P(TextEngineContract, PutsItsTextOnTheBaseline) {
  for (const Typeface typeface : typefaces) {
    for (const int scale : {1, 2, 3}) {
      AlphaBitmap bitmap(60 * scale, 30 * scale);
      engine->draw(bitmap, scale, 10, 8, line("0123", typeface, 10));
      const Ink ink = inkOf(bitmap);
      const double width = engine->width(line("0123", typeface, 10)) * scale;
      EXPECT_NEAR(ink.left, 10 * scale, 2 * scale);
      EXPECT_NEAR(ink.right, 10 * scale + width, 2 * scale);
      // Round digits may reach a little below the baseline.
      EXPECT_NEAR(ink.bottom, (30 - 8) * scale, scale);
      EXPECT_LE(ink.top, (30 - 8 - 6) * scale);
      EXPECT_GE(ink.top, (30 - 8 - 9) * scale);
    }
  }
}

TEST_P(TextEngineContract, PutsRunsSideBySide) {
  AlphaBitmap together(60, 20);
  engine->draw(together, 1, 3, 5,
               {{"12", {Typeface::monospaced, 10}}, {"34", {Typeface::monospaced, 10}}});
  AlphaBitmap asOne(60, 20);
  engine->draw(asOne, 1, 3, 5, line("1234", Typeface::monospaced, 10));
  EXPECT_EQ(together, asOne);
}

TEST_P(TextEngineContract, DrawsTheSamePixelsEachTime) {
  for (const double scale : {1.0, 1.25, 2.0}) {
    AlphaBitmap first(100, 40);
    engine->draw(first, scale, 3.3, 5.6, line("41°C —"));
    AlphaBitmap second(100, 40);
    engine->draw(second, scale, 3.3, 5.6, line("41°C —"));
    EXPECT_FALSE(inkOf(first).isEmpty());
    EXPECT_EQ(first, second);
  }
}

TEST_P(TextEngineContract, NamesTheColumnsOfItsInk) {
  for (const double x : {-12.0, 0.0, 3.3, 27.0}) {
    AlphaBitmap bitmap(60, 40);
    const InkSpan span = engine->draw(bitmap, 2, x, 5.6, line("41°C —"));
    EXPECT_TRUE(span.isFinal);
    EXPECT_GE(span.begin, 0);
    EXPECT_LE(span.end, bitmap.width);
    for (int column = 0; column < bitmap.width; ++column) {
      for (int row = 0; row < bitmap.height; ++row) {
        const bool isNamed = span.begin <= column && column < span.end;
        ASSERT_TRUE(isNamed || bitmap.at(column, row) == 0) << x << ", column " << column;
      }
    }
  }
}

TEST_P(TextEngineContract, LeavesInkThatIsThere) {
  AlphaBitmap bitmap(40, 20);
  std::fill(bitmap.pixels.begin(), bitmap.pixels.end(), std::uint8_t{255});
  engine->draw(bitmap, 1, 3, 5, line("88%"));
  EXPECT_TRUE(std::all_of(bitmap.pixels.begin(), bitmap.pixels.end(),
                          [](std::uint8_t pixel) { return pixel == 255; }));
}

TEST_P(TextEngineContract, CutsOffWhatFallsOutside) {
  AlphaBitmap whole(60, 40);
  engine->draw(whole, 1, 20, 15, line("88"));
  // The same place in a window of 10 by 10 pixels.
  AlphaBitmap window(10, 10);
  engine->draw(window, 1, 20 - 22, 15 - 14, line("88"));
  for (int row = 0; row < 10; ++row) {
    for (int column = 0; column < 10; ++column) {
      EXPECT_EQ(window.at(column, row), whole.at(22 + column, 40 - 14 - 10 + row));
    }
  }
}

TEST_P(TextEngineContract, DrawsNothingFarOutsideOrIntoNothing) {
  AlphaBitmap bitmap(20, 20);
  for (const double far : {-1e4, 1e4, -1e12, 1e12}) {
    engine->draw(bitmap, 1, far, 5, line("88%"));
    engine->draw(bitmap, 1, 5, far, line("88%"));
  }
  EXPECT_TRUE(inkOf(bitmap).isEmpty());
  AlphaBitmap none;
  engine->draw(none, 1, 0, 0, line("88%"));
  EXPECT_EQ(none, AlphaBitmap());
}

TEST_P(TextEngineContract, TakesAnyBytesAsText) {
  AlphaBitmap bitmap(200, 20);
  for (const char* text : {"\xFF\xFE", "\xC3", "\xE2\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80",
                           "\t\n", "日本", "\U0001F600", "\xC0\x80"}) {
    EXPECT_TRUE(std::isfinite(engine->width(line(text))));
    engine->draw(bitmap, 1, 2, 5, line(text));
  }
}

}  // namespace vantora::test
