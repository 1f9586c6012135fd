// SPDX-License-Identifier: MIT
#include "app/print/block_clicks.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantora {
namespace {

constexpr const char* leftClick =
    R"({"name":"vantora","instance":"A","button":1,"modifiers":["Mod2"],"x":1925,"y":1400,)"
    R"("relative_x":12,"relative_y":8,"output_x":5,"output_y":1400,"width":50,"height":22})";

TEST(BlockClick, IsReadAsTheProtocolWritesIt) {
  EXPECT_EQ(readBlockClick(leftClick), BlockButton::left);
  EXPECT_EQ(readBlockClick(R"({"button":3,"name":"vantora"})"), BlockButton::right);
}

TEST(BlockClick, IsReadWhereverABarPutsTheCommas) {
  const std::string click = leftClick;
  for (const std::string& line :
       {click + ",", "," + click, "[" + click, " , " + click + " ,\r", "[," + click}) {
    EXPECT_EQ(readBlockClick(line), BlockButton::left) << line;
  }
}

TEST(BlockClick, IsNothingForOtherButtonsAndOtherPrograms) {
  for (const char* line : {R"({"name":"vantora","button":2})", R"({"name":"vantora","button":4})",
                           R"({"name":"vantora","button":-1})", R"({"name":"vantora"})",
                           R"({"button":1})", R"({"name":"clock","button":1})"}) {
    EXPECT_EQ(readBlockClick(line), std::nullopt) << line;
  }
}

TEST(BlockClick, IsNothingForWhatIsNoClick) {
  for (const char* line : {"", "[", ",", "[[", "]", "{", "null", "1", "\"vantora\"", "[[1]]",
                           R"({"name":1,"button":"1"})", R"({"name":"vantora","button":1.5})",
                           R"({"name":"vantora","button":true})", "\xff\xfe"}) {
    EXPECT_EQ(readBlockClick(line), std::nullopt) << line;
  }
}

class BlockClicksTest : public testing::Test {
 protected:
  std::vector<BlockButton> seen_;
  BlockClicks clicks_{[this](BlockButton button) { seen_.push_back(button); }};
};

TEST_F(BlockClicksTest, ComeOneALineHoweverTheyArrive) {
  const std::string stream =
      std::string("[\n") + leftClick + "\n," + R"({"name":"vantora","button":3})" + "\n";
  for (const char byte : stream) {
    clicks_.feed({&byte, 1});
  }
  EXPECT_EQ(seen_, (std::vector{BlockButton::left, BlockButton::right}));
  clicks_.feed(stream);
  EXPECT_EQ(seen_.size(), 4U);
}

TEST_F(BlockClicksTest, GoOnBehindLinesThatAreNone) {
  clicks_.feed("nonsense\n{]\n\n");
  clicks_.feed(std::string(leftClick) + "\n");
  EXPECT_EQ(seen_, std::vector{BlockButton::left});
}

TEST_F(BlockClicksTest, GoOnBehindALineOfAnyLength) {
  const std::string much(1'000'000, 'x');
  clicks_.feed(much);
  clicks_.feed(much + "\n" + leftClick + "\n");
  EXPECT_EQ(seen_, std::vector{BlockButton::left});
  clicks_.feed(std::string(BlockClicks::maxLine, ' ') + leftClick + "\n");
  EXPECT_EQ(seen_.size(), 1U) << "too long to be taken, though it would mean something";
  clicks_.feed(std::string(leftClick) + "\n");
  EXPECT_EQ(seen_.size(), 2U);
}

}  // namespace
}  // namespace vantora
