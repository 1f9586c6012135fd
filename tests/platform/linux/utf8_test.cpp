// SPDX-License-Identifier: MIT
#include "platform/linux/utf8.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vantora {
namespace {

std::u32string characters(std::string_view text) {
  std::u32string result;
  while (!text.empty()) {
    result += takeCharacter(text);
  }
  return result;
}

TEST(TakeCharacter, ReadsEveryLengthOfSequence) {
  EXPECT_EQ(characters("1°—\U0001F600%"), U"1\u00B0\u2014\U0001F600%");
  EXPECT_EQ(characters(std::string_view("\0", 1)), std::u32string_view(U"\0", 1));
  EXPECT_EQ(characters("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"),
            U"\u007F\u0080\u07FF\u0800\uFFFF\U00010000");
  EXPECT_EQ(characters("\xF4\x8F\xBF\xBF"), U"\U0010FFFF");
}

TEST(TakeCharacter, ReplacesOneByteWhereNoSequenceStands) {
  EXPECT_EQ(characters("\x80"), U"\uFFFD");
  EXPECT_EQ(characters("\xFF"
                       "1"),
            U"\uFFFD1");
  EXPECT_EQ(characters("\xC3"), U"\uFFFD");            // Cut off.
  EXPECT_EQ(characters("\xE2\x80"), U"\uFFFD\uFFFD");  // Cut off.
  EXPECT_EQ(characters("\xC3"
                       "A"),
            U"\uFFFDA");
  EXPECT_EQ(characters("\xC0\x80"), U"\uFFFD\uFFFD");                      // Overlong.
  EXPECT_EQ(characters("\xE0\x9F\xBF"), U"\uFFFD\uFFFD\uFFFD");            // Overlong.
  EXPECT_EQ(characters("\xF0\x8F\xBF\xBF"), U"\uFFFD\uFFFD\uFFFD\uFFFD");  // Overlong.
  EXPECT_EQ(characters("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD");            // Surrogate.
  EXPECT_EQ(characters("\xF4\x90\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD");  // Too high.
}

}  // namespace
}  // namespace vantora
