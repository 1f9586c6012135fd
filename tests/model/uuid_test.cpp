// SPDX-License-Identifier: MIT
#include "model/uuid.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

namespace vantora {
namespace {

TEST(UUID, IsWrittenInUpperCaseAndReadInEither) {
  const auto upper = UUID::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
  const auto lower = UUID::parse("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
  ASSERT_TRUE(upper);
  EXPECT_EQ(upper, lower);
  EXPECT_EQ(lower->text(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
}

TEST(UUID, AppendsItsTextBehindWhatIsThere) {
  std::string text = "before ";
  UUID().appendTo(text);
  EXPECT_EQ(text, "before 00000000-0000-0000-0000-000000000000");
}

TEST(UUID, ReadsNoOtherForm) {
  for (const char* text :
       {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}",
        "E621E1F8-C36C-495A-93FC-0C247A3E6E5", "E621E1F8-C36C-495A-93FC-0C247A3E6E5FF",
        "G621E1F8-C36C-495A-93FC-0C247A3E6E5F", "E621E1F8+C36C-495A-93FC-0C247A3E6E5F",
        "E621E1F-8C36C-495A-93FC-0C247A3E6E5F"}) {
    EXPECT_EQ(UUID::parse(text), std::nullopt) << text;
  }
}

TEST(UUID, IsRandomOfVersionFour) {
  const UUID first = UUID::random();
  const std::string text = first.text();
  EXPECT_NE(first, UUID::random());
  EXPECT_EQ(text[14], '4');
  EXPECT_NE(std::string_view("89AB").find(text[19]), std::string_view::npos);
  EXPECT_EQ(UUID::parse(text), first);
}

TEST(UUID, IsRandomInEveryBitButThoseOfVersionAndVariant) {
  // Of 256 draws, a bit is the same in all with a probability of 2^-255.
  std::string ones(36, '0');
  std::string zeros(36, 'F');
  const auto combine = [](char left, char right, auto operation) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    return left == '-' || right == '-' ? '-'
                                       : digits[operation(digits.find(left), digits.find(right))];
  };
  bool hasUnequalNeighbours = false;
  for (int draw = 0; draw < 256; ++draw) {
    const std::string text = UUID::random().text();
    for (std::size_t place = 0; place < text.size(); ++place) {
      ones[place] = combine(ones[place], text[place], std::bit_or<>());
      zeros[place] = combine(zeros[place], text[place], std::bit_and<>());
    }
    hasUnequalNeighbours = hasUnequalNeighbours || text.substr(0, 2) != text.substr(2, 2);
  }
  EXPECT_EQ(ones, "FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF");
  EXPECT_EQ(zeros, "00000000-0000-4000-8000-000000000000");
  EXPECT_TRUE(hasUnequalNeighbours);
}

}  // namespace
}  // namespace vantora
