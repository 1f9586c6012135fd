// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/fontconfig_lookup.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/linux/fonts/dejavu_fonts.hpp"
#include "platform/linux/fonts/freetype_text_engine.hpp"
#include "platform/linux/fonts/patched_font.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

constexpr const char* dejavuFolder = "/usr/share/fonts/truetype/dejavu/";
/// DejaVu Sans keeps its digits behind three special glyphs, in the order of ASCII.
constexpr unsigned glyphOfOne = 0x31 - 0x20 + 3;

/// A machine whose fonts are those in one folder, with DejaVu as its families.
struct FontconfigLookup : ::testing::Test {
  FontconfigLookup() {
    std::filesystem::create_directory(folder / "fonts");
    prefer("DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono");
  }

  /// The families behind the three generic names.
  void prefer(const std::string& systemUi, const std::string& sansSerif,
              const std::string& monospace) const {
    const auto alias = [](const std::string& generic, const std::string& family) {
      return "<alias><family>" + generic + "</family><prefer><family>" + family +
             "</family></prefer></alias>";
    };
    test::writeBytes(configuration(),
                     "<?xml version=\"1.0\"?><fontconfig><dir>" + (folder / "fonts").string() +
                         "</dir><cachedir>" + (folder / "cache").string() + "</cachedir>" +
                         alias("system-ui", systemUi) + alias("sans-serif", sansSerif) +
                         alias("monospace", monospace) + "</fontconfig>");
  }

  [[nodiscard]] std::string configuration() const { return folder / "fonts.conf"; }
  [[nodiscard]] std::string font(const std::string& name) const {
    return (folder / "fonts") / name;
  }

  void install(const std::string& name) const {
    std::filesystem::copy_file(dejavuFolder + name, font(name));
  }
  void install(const std::string& name, const std::string& bytes) const {
    test::writeBytes(font(name), bytes);
  }

  test::TemporaryFolder folder;
};

TEST_F(FontconfigLookup, FindsTheInterfaceFaceAndTheMonospacedOne) {
  install("DejaVuSans.ttf");
  install("DejaVuSans-Bold.ttf");
  install("DejaVuSerif.ttf");
  install("DejaVuSansMono.ttf");
  const FontSelection fonts = lookUpFonts(configuration());
  // Regular is nearer to medium than bold is.
  EXPECT_EQ(fonts.text, (std::vector<FontFile>{{font("DejaVuSans.ttf"), 0, {}, 20}}));
  EXPECT_EQ(fonts.monospaced, (std::vector<FontFile>{{font("DejaVuSansMono.ttf"), 0, {}, 20}}));
}

TEST_F(FontconfigLookup, PassesOverAFamilyWhoseDigitsDifferInWidth) {
  const std::string sound = test::readBytes(test::dejavuSans);
  install("DejaVuSans.ttf", test::withAdvance(sound, glyphOfOne, 900));
  install("DejaVuSans-Bold.ttf");
  install("DejaVuSerif.ttf");
  install("DejaVuSansMono.ttf");
  const FontSelection fonts = lookUpFonts(configuration());
  ASSERT_FALSE(fonts.text.empty());
  // The family's bold face has even digits, but the family is out.
  EXPECT_EQ(fonts.text.front().path, font("DejaVuSerif.ttf"));
}

TEST_F(FontconfigLookup, PassesOverAMonospacedFamilyThatIsNot) {
  prefer("DejaVu Sans", "DejaVu Sans", "DejaVu Serif");
  install("DejaVuSans.ttf");
  install("DejaVuSerif.ttf");
  install("DejaVuSansMono.ttf");
  const FontSelection fonts = lookUpFonts(configuration());
  ASSERT_FALSE(fonts.monospaced.empty());
  EXPECT_EQ(fonts.monospaced.front().path, font("DejaVuSansMono.ttf"));
}

TEST_F(FontconfigLookup, FallsToSansSerifWhereThereIsNoSystemFace) {
  install("DejaVuSerif.ttf");
  install("DejaVuSansMono.ttf");
  const FontSelection fonts = lookUpFonts(configuration());
  ASSERT_FALSE(fonts.text.empty());
  EXPECT_EQ(fonts.text.front().path, font("DejaVuSerif.ttf"));
}

TEST_F(FontconfigLookup, AddsAFontForWhatTheFaceLacks) {
  constexpr char32_t dash = 0x2014;
  install("DejaVuSans.ttf", test::withoutCharacter(test::readBytes(test::dejavuSans), dash));
  install("DejaVuSerif.ttf");
  const FontSelection fonts = lookUpFonts(configuration());
  ASSERT_EQ(fonts.text.size(), 2U);
  EXPECT_EQ(fonts.text[0].path, font("DejaVuSans.ttf"));
  EXPECT_EQ(fonts.text[1].path, font("DejaVuSerif.ttf"));
  FreetypeTextEngine engine(fonts);
  FreetypeTextEngine serif({{fonts.text[1]}, {}});
  const StyledText text{{"—", {Typeface::tabularDigits, 9}}};
  EXPECT_EQ(engine.width(text), serif.width(text));
}

TEST_F(FontconfigLookup, UsesOneFaceForBothWhereThereIsNoOther) {
  install("DejaVuSans.ttf");
  FontSelection fonts = lookUpFonts(configuration());
  ASSERT_EQ(fonts.text.size(), 1U);
  EXPECT_EQ(fonts.monospaced, fonts.text);
  std::filesystem::remove(font("DejaVuSans.ttf"));
  install("DejaVuSansMono.ttf");
  fonts = lookUpFonts(configuration());
  ASSERT_EQ(fonts.text.size(), 1U);
  EXPECT_EQ(fonts.text.front().path, font("DejaVuSansMono.ttf"));
  EXPECT_EQ(fonts.monospaced, fonts.text);
}

TEST_F(FontconfigLookup, PassesOverFilesThatAreNoFonts) {
  const std::string sound = test::readBytes(test::dejavuSans);
  install("empty.ttf", "");
  install("text.ttf", "not a font");
  install("short.ttf", sound.substr(0, 5000));
  install("DejaVuSerif.ttf");
  const FontSelection fonts = lookUpFonts(configuration());
  ASSERT_EQ(fonts.text.size(), 1U);
  EXPECT_EQ(fonts.text.front().path, font("DejaVuSerif.ttf"));
}

TEST_F(FontconfigLookup, FindsNothingWithoutFonts) {
  EXPECT_EQ(lookUpFonts(configuration()), FontSelection());
}

TEST_F(FontconfigLookup, FindsNothingUnderABrokenConfiguration) {
  install("DejaVuSans.ttf");
  test::writeBytes(configuration(), "<fontconfig><dir>");
  EXPECT_EQ(lookUpFonts(configuration()), FontSelection());
  EXPECT_EQ(lookUpFonts(folder / "missing.conf"), FontSelection());
}

TEST_F(FontconfigLookup, CanBeAskedAgain) {
  install("DejaVuSans.ttf");
  const FontSelection first = lookUpFonts(configuration());
  EXPECT_EQ(lookUpFonts(configuration()), first);
}

TEST(SystemFonts, AreFoundWhereTheTestsRun) {
  const FontSelection fonts = lookUpFonts();
  EXPECT_FALSE(fonts.text.empty());
  EXPECT_FALSE(fonts.monospaced.empty());
}

}  // namespace
}  // namespace vantora
