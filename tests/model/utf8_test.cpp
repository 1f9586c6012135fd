// SPDX-License-Identifier: MIT
#include "model/utf8.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

TEST(Utf8, LeavesWellFormedTextAlone) {
  for (const char* text : {"", "en0", "café", "· \u20AC \U0001F600",
                           "\u007F\u0080\u07FF\u0800\uD7FB\uE000\uFFFF", "\U00010000\U0010FFFF"}) {
    EXPECT_EQ(repairedUtf8(text), text);
  }
}

TEST(Utf8, ReplacesABadByte) {
  EXPECT_EQ(repairedUtf8("a\xFF"
                         "b"),
            "a\uFFFDb");
  EXPECT_EQ(repairedUtf8("\x80\xBF"), "\uFFFD\uFFFD");
}

TEST(Utf8, ReplacesATruncatedSequenceOnce) {
  EXPECT_EQ(repairedUtf8("\xE2\x82"), "\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF0\x9F\x98"
                         "x"),
            "\uFFFDx");
  EXPECT_EQ(repairedUtf8("\xC3"), "\uFFFD");
}

TEST(Utf8, ReplacesEachByteOfAnOverlongForm) {
  EXPECT_EQ(repairedUtf8("\xC0\xAF"), "\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xE0\x80\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF0\x80\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Utf8, ReplacesSurrogatesAndWhatLiesPastTheLastCodePoint) {
  EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF5\x80"), "\uFFFD\uFFFD");
}

// The example of the Unicode Standard, table 3-8.
TEST(Utf8, ReplacesMaximalSubparts) {
  EXPECT_EQ(repairedUtf8("\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64"),
            "a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd");
}

TEST(Utf8, KeepsAZeroByte) {
  using std::string_view_literals::operator""sv;
  EXPECT_EQ(repairedUtf8("a\0b"sv), "a\0b"sv);
}

std::u32string characters(std::string_view text) {
  std::u32string result;
  while (!text.empty()) {
    result += takeCharacter(text);
  }
  return result;
}

TEST(Utf8, TakesCharactersOfEveryLength) {
  EXPECT_EQ(characters("1°—\U0001F600%"), U"1\u00B0\u2014\U0001F600%");
  EXPECT_EQ(characters(std::string_view("\0", 1)), std::u32string_view(U"\0", 1));
  EXPECT_EQ(characters("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"),
            U"\u007F\u0080\u07FF\u0800\uFFFF\U00010000");
  EXPECT_EQ(characters("\xF4\x8F\xBF\xBF"), U"\U0010FFFF");
}

TEST(Utf8, TakesOneReplacementForEachMaximalSubpart) {
  EXPECT_EQ(characters("\x80"), U"\uFFFD");
  EXPECT_EQ(characters("\xFF"
                       "1"),
            U"\uFFFD1");
  EXPECT_EQ(characters("\xC3"
                       "A"),
            U"\uFFFDA");
  EXPECT_EQ(characters("\xE2\x80"), U"\uFFFD") << "cut off";
  EXPECT_EQ(characters("\xC0\x80"), U"\uFFFD\uFFFD") << "overlong";
  EXPECT_EQ(characters("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD") << "a surrogate";
  EXPECT_EQ(characters("\xF4\x90\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD") << "too high";
}

}  // namespace
}  // namespace vantora
