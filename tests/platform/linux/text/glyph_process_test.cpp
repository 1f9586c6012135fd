// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_process.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/linux/fonts/fontconfig_lookup.hpp"
#include "platform/linux/fonts/freetype_glyphs.hpp"
#include "platform/linux/text/glyph_text_engine.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

const GlyphRequest percentRequest{true, 18 * 64, U"17%— \U0010FFFE"};

/// A program that answers as `script`, a shell's, does.
std::string program(const test::TemporaryFolder& folder, const std::string& script) {
  const std::filesystem::path path = folder / "glyphs";
  test::writeBytes(path, "#!/bin/sh\n" + script);
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  return path;
}

struct GlyphProcessTest : ::testing::Test {
  std::optional<GlyphAnswer> draw(GlyphProcess& process) {
    process.onFailure = [this](const std::string& message) { messages.push_back(message); };
    return process.draw(percentRequest);
  }

  test::VirtualTime time;
  test::TemporaryFolder folder;
  std::vector<std::string> messages;
};

TEST_F(GlyphProcessTest, DrawsAsThisProcessWould) {
  GlyphProcess process(VANTORA_GLYPHS, time);
  FreetypeGlyphs here(lookUpFonts());
  EXPECT_EQ(draw(process), here.draw(percentRequest));
  // With the fonts that the first answer named.
  EXPECT_EQ(draw(process), here.draw(percentRequest));
  EXPECT_TRUE(messages.empty());
}

TEST_F(GlyphProcessTest, SaysOnceWhatItLacksAndTriesAgainLater) {
  GlyphProcess process(folder / "glyphs", time);
  EXPECT_EQ(draw(process), std::nullopt);
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages.front(), "não foi possível desenhar os caracteres: " +
                                  (folder / "glyphs").string() + " não respondeu");
  process.onFailure = nullptr;
  std::filesystem::create_symlink(VANTORA_GLYPHS, folder / "glyphs");
  EXPECT_EQ(process.draw(percentRequest), std::nullopt);
  time.advance(GlyphProcess::restAfterFailure);
  EXPECT_NE(process.draw(percentRequest), std::nullopt);
}

TEST_F(GlyphProcessTest, TakesNothingFromAProgramThatAnswersSomethingElse) {
  for (const char* script : {"echo text", "exit 0", "kill -SEGV $$", "exit 1"}) {
    GlyphProcess process(program(folder, script), time);
    EXPECT_EQ(draw(process), std::nullopt) << script;
  }
}

TEST_F(GlyphProcessTest, KeepsThePictureInShapeWithoutAnswers) {
  GlyphProcess process(folder / "glyphs", time);
  GlyphTextEngine engine(process);
  const StyledText text{{"17%", {Typeface::tabularDigits, 9}}};
  EXPECT_NEAR(engine.width(text), 3 * 0.6 * 9, 1e-4);
  AlphaBitmap boxes(60, 20);
  engine.draw(boxes, 1, 2, 5, text);
  EXPECT_NE(boxes, AlphaBitmap(60, 20));
  // Nothing of that is kept.
  std::filesystem::create_symlink(VANTORA_GLYPHS, folder / "glyphs");
  time.advance(GlyphProcess::restAfterFailure);
  AlphaBitmap letters(60, 20);
  engine.draw(letters, 1, 2, 5, text);
  EXPECT_NE(letters, boxes);
}

}  // namespace
}  // namespace vantora
