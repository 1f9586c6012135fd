// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_message.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

GlyphReply exampleReply() {
  GlyphReply reply;
  reply.fonts = {"interface-fonts", "/a font.ttf", "0", ""};
  reply.answer.digitHeight = 0.73;
  DrawnCharacter one{U'1', 0.6F, {}};
  for (int phase = 0; phase < glyphPhases; ++phase) {
    GlyphImage image{phase - 1, 7, AlphaBitmap(2, 3)};
    image.ink.at(1, 2) = static_cast<std::uint8_t>(200 + phase);
    one.images.push_back(image);
  }
  reply.answer.characters = {one, {U'\U0001D7D8', -1, {}}};
  return reply;
}

TEST(GlyphOrder, ComesBackAsItWas) {
  const GlyphOrder order{{true, 9 * 64, U"1%—\U0001D7D8"}, {"interface-fonts", "/a font.ttf"}};
  const auto parsed = parseGlyphOrder(toArguments(order));
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->request, order.request);
  EXPECT_EQ(parsed->fonts, order.fonts);
  const GlyphOrder empty;
  EXPECT_EQ(parseGlyphOrder(toArguments(empty))->request, empty.request);
}

TEST(GlyphOrder, IsRefusedWhenItsArgumentsAreOthers) {
  using Arguments = std::vector<std::string>;
  for (const Arguments& arguments :
       {Arguments{}, Arguments{"interface", "576"}, Arguments{"serif", "576", "49"},
        Arguments{"interface", "9pt", "49"}, Arguments{"interface", "-1", "49"},
        Arguments{"interface", "99999999", "49"}, Arguments{"interface", "576", "49;50"},
        Arguments{"interface", "576", "one"}, Arguments{"interface", "576", "4294967296"}}) {
    EXPECT_FALSE(parseGlyphOrder(arguments)) << ::testing::PrintToString(arguments);
  }
}

TEST(GlyphReply, ComesBackAsItWas) {
  const GlyphReply reply = exampleReply();
  const auto parsed = parseGlyphReply(encode(reply));
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->fonts, reply.fonts);
  EXPECT_EQ(parsed->answer, reply.answer);
}

TEST(GlyphReply, IsRefusedWhenItIsCutShortOrTooLong) {
  const std::string bytes = encode(exampleReply());
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_FALSE(parseGlyphReply(bytes.substr(0, length))) << length;
  }
  EXPECT_FALSE(parseGlyphReply(bytes + '\0'));
}

TEST(GlyphReply, IsRefusedWhenAPictureIsLargerThanItsBytes) {
  GlyphReply reply = exampleReply();
  reply.answer.characters.front().images.back().ink.height = 4;
  EXPECT_FALSE(parseGlyphReply(encode(reply)));
  reply = exampleReply();
  reply.answer.characters.front().images.back().ink.width = -2;
  EXPECT_FALSE(parseGlyphReply(encode(reply)));
  reply = exampleReply();
  reply.answer.characters.front().images.pop_back();
  EXPECT_FALSE(parseGlyphReply(encode(reply)));
}

}  // namespace
}  // namespace vantora
