// SPDX-License-Identifier: MIT
#include "process/line_framer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/live_memory.hpp"

namespace vantora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t framerLimit = 1'000'000;

std::vector<std::string> takeAll(LineFramer& framer) {
  std::vector<std::string> lines;
  while (const auto line = framer.takeLine()) {
    lines.emplace_back(*line);
  }
  return lines;
}

TEST(LineFramer, KeepsHalfALineUntilItsLineFeedArrives) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append("{\"id\""));
  EXPECT_THAT(takeAll(framer), IsEmpty());
  EXPECT_EQ(framer.pendingBytes(), 5U);
  ASSERT_TRUE(framer.append(":1}\n"));
  EXPECT_THAT(takeAll(framer), ElementsAre("{\"id\":1}"));
  EXPECT_EQ(framer.pendingBytes(), 0U);
}

TEST(LineFramer, ForgetsWhatWaitsWhenItIsCleared) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append("one\ntw"));
  EXPECT_THAT(takeAll(framer), ElementsAre("one"));
  framer.clear();
  EXPECT_EQ(framer.pendingBytes(), 0U);
  ASSERT_TRUE(framer.append("three\n"));
  EXPECT_THAT(takeAll(framer), ElementsAre("three"));
}

TEST(LineFramer, GivesItsMemoryBackWhenItIsCleared) {
  LineFramer framer(framerLimit);
  const std::string flood(framerLimit, 'x');
  const std::size_t before = test::liveBytes();
  ASSERT_TRUE(framer.append(flood));
  EXPECT_GE(test::liveBytes(), before + framerLimit);
  framer.clear();
  EXPECT_EQ(test::liveBytes(), before);
}

TEST(LineFramer, TakesSeveralLinesOfOneReadInOrder) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append("one\ntwo\nthr"));
  EXPECT_THAT(takeAll(framer), ElementsAre("one", "two"));
  ASSERT_TRUE(framer.append("ee\n"));
  EXPECT_THAT(takeAll(framer), ElementsAre("three"));
}

TEST(LineFramer, FeedsEachLineUntilOneIsRefused) {
  LineFramer framer(20);
  std::vector<std::string> lines;
  const auto take = [&](std::string_view line) {
    lines.emplace_back(line);
    return line != "stop";
  };
  EXPECT_TRUE(framer.feed("one\ntw", take));
  EXPECT_TRUE(framer.feed("o\n", take));
  EXPECT_FALSE(framer.feed("stop\nmore\n", take));
  EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", "stop"}));
  EXPECT_FALSE(framer.feed(std::string(20, 'x'), take));
}

TEST(LineFramer, FeedsNothingMoreOnceItIsCleared) {
  LineFramer framer(20);
  int count = 0;
  EXPECT_TRUE(framer.feed("one\ntwo\n", [&](std::string_view) {
    ++count;
    framer.clear();
    return true;
  }));
  EXPECT_EQ(count, 1);
}

TEST(LineFramer, TakesEmptyLines) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append("\n\na\n\n"));
  EXPECT_THAT(takeAll(framer), ElementsAre("", "", "a", ""));
}

TEST(LineFramer, KeepsTheCarriageReturnOfACrLfLine) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append("one\r"));
  ASSERT_TRUE(framer.append("\ntwo\r\n"));
  EXPECT_THAT(takeAll(framer), ElementsAre("one\r", "two\r"));
}

TEST(LineFramer, MakesACharacterWholeThatWasSplitAcrossReads) {
  LineFramer framer(framerLimit);
  const std::string text = "grau \u00b0 e \u2014\n";
  for (const char byte : text) {
    EXPECT_THAT(takeAll(framer), IsEmpty());
    ASSERT_TRUE(framer.append(std::string_view(&byte, 1)));
  }
  EXPECT_THAT(takeAll(framer), ElementsAre("grau \u00b0 e \u2014"));
}

TEST(LineFramer, TakesBytesThatAreNoTextAsTheyAre) {
  LineFramer framer(framerLimit);
  const std::string bytes("\xff\0\x80\n", 4);
  ASSERT_TRUE(framer.append(bytes));
  EXPECT_THAT(takeAll(framer), ElementsAre(std::string("\xff\0\x80", 3)));
}

TEST(LineFramer, NeverTakesALastLineWithoutALineFeed) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append("done\nhalf"));
  EXPECT_THAT(takeAll(framer), ElementsAre("done"));
  EXPECT_THAT(takeAll(framer), IsEmpty());
  EXPECT_EQ(framer.pendingBytes(), 4U);
}

TEST(LineFramer, AcceptsExactlyTheLimitAndRefusesOneByteMore) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append(std::string(framerLimit, 'x')));
  EXPECT_EQ(framer.pendingBytes(), framerLimit);
  EXPECT_FALSE(framer.append("x"));
  EXPECT_FALSE(framer.append("\n"));
  EXPECT_EQ(framer.pendingBytes(), framerLimit);
}

TEST(LineFramer, RefusesOneReadAboveTheLimitWhateverLinesItHolds) {
  LineFramer framer(framerLimit);
  EXPECT_FALSE(framer.append(std::string(framerLimit + 1, '\n')));
  EXPECT_EQ(framer.pendingBytes(), 0U);
  EXPECT_TRUE(framer.append(std::string(framerLimit, '\n')));
}

TEST(LineFramer, TakesALineWithItsLineFeedOfExactlyTheLimit) {
  LineFramer framer(framerLimit);
  ASSERT_TRUE(framer.append(std::string(framerLimit - 1, 'x')));
  ASSERT_TRUE(framer.append("\n"));
  const auto lines = takeAll(framer);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines.front().size(), framerLimit - 1);
}

TEST(LineFramer, CountsOnlyWhatWasNotTakenTowardsTheLimit) {
  LineFramer framer(10);
  for (int round = 0; round < 100; ++round) {
    ASSERT_TRUE(framer.append("12345\n78")) << round;
    ASSERT_TRUE(framer.takeLine());
    ASSERT_TRUE(framer.append("\n"));
    ASSERT_EQ(takeAll(framer).size(), 1U);
  }
  ASSERT_TRUE(framer.append("12345\n"));
  EXPECT_FALSE(framer.append("12345"));
  EXPECT_TRUE(framer.append("1234"));
}

TEST(LineFramer, LosesNothingWhenLinesAreTakenLate) {
  LineFramer framer(framerLimit);
  std::vector<std::string> expected;
  for (int index = 0; index < 300; ++index) {
    expected.push_back(std::string(static_cast<std::size_t>(index % 7), 'a') +
                       std::to_string(index));
    ASSERT_TRUE(framer.append(expected.back() + "\n"));
  }
  std::vector<std::string> taken;
  while (taken.size() < expected.size()) {
    for (int count = 0; count < 3; ++count) {
      if (const auto line = framer.takeLine()) {
        taken.emplace_back(*line);
      }
    }
    if (taken.size() < expected.size()) {
      ASSERT_TRUE(framer.append("z"));
      ASSERT_TRUE(framer.append("\n"));
      expected.emplace_back("z");
      if (expected.size() > 1000) {
        break;
      }
    }
  }
  while (const auto line = framer.takeLine()) {
    taken.emplace_back(*line);
  }
  EXPECT_EQ(taken, expected);
}

}  // namespace
}  // namespace vantora
