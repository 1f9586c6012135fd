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

}  // namespace
}  // namespace vantora
