// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/font_arguments.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

TEST(FontArguments, ComeBackAsTheyWere) {
  const FontSelection selection{
      {{"/fonts/A B\n.ttf", 0, {}, 20}, {"/fonts/variable.ttf", 0x30001, "wght=500,wdth=100", 0}},
      {{"/fonts/m.ttc", 3, {}, -1}}};
  EXPECT_EQ(parseFonts(toArguments(selection)), selection);
}

TEST(FontArguments, OfNoFontsAreNotThoseOfALookup) {
  EXPECT_FALSE(toArguments(FontSelection()).empty());
  EXPECT_EQ(parseFonts(toArguments(FontSelection())), FontSelection());
}

TEST(FontArguments, AreRefusedWhenTheyAreOthers) {
  FontArguments cut = toArguments(FontSelection{{{"/a.ttf", 0, {}, 0}}, {}});
  cut.erase(cut.begin() + 2);
  EXPECT_EQ(parseFonts(cut), std::nullopt);
  EXPECT_EQ(parseFonts({"/a.ttf", "0", "", "0"}), std::nullopt);
  EXPECT_EQ(parseFonts({"interface-fonts", "/a.ttf", "0x", "", "0"}), std::nullopt);
  EXPECT_EQ(parseFonts({"interface-fonts", "/a.ttf", "0", "", "heavy"}), std::nullopt);
}

}  // namespace
}  // namespace vantora
