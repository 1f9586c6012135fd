// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/fontconfig_lookup.hpp"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/fonts/freetype_face.hpp"

namespace vantora {
namespace {

constexpr std::u32string_view digits = U"0123456789";
constexpr std::u32string_view otherCharacters =
    U"!\"#$%&'()*+,-./:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
    U"abcdefghijklmnopqrstuvwxyz{|}~\u00B0\u2014";

using Config = std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)>;
using Pattern = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;
using FontSet = std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)>;

/// fontconfig takes its texts as unsigned characters.
const FcChar8* chars(const std::string& text) {
  return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string text(const FcPattern& pattern, const char* object) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(&pattern, object, 0, &value) != FcResultMatch) {
    return {};
  }
  return reinterpret_cast<const char*>(value);
}

Config loadConfig(const std::string& file) {
  if (file.empty()) {
    return {FcInitLoadConfigAndFonts(), FcConfigDestroy};
  }
  Config config(FcConfigCreate(), FcConfigDestroy);
  if (config && (FcConfigParseAndLoad(config.get(), chars(file), FcTrue) == FcFalse ||
                 FcConfigBuildFonts(config.get()) == FcFalse)) {
    config.reset();
  }
  return config;
}

Pattern request(FcConfig& config, std::initializer_list<const char*> families) {
  Pattern pattern(FcPatternCreate(), FcPatternDestroy);
  if (!pattern) {
    return pattern;
  }
  for (const char* family : families) {
    FcPatternAddString(pattern.get(), FC_FAMILY, chars(family));
  }
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, FC_WEIGHT_MEDIUM);
  FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_ROMAN);
  FcPatternAddInteger(pattern.get(), FC_WIDTH, FC_WIDTH_NORMAL);
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_COLOR, FcFalse);
  FcConfigSubstitute(&config, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

/// The font as it is to be opened under `wanted`, or nothing when it has no file.
std::optional<FontFile> fontFile(FcConfig& config, FcPattern& wanted, FcPattern& font) {
  const Pattern prepared(FcFontRenderPrepare(&config, &wanted, &font), FcPatternDestroy);
  FontFile file;
  if (!prepared || (file.path = text(*prepared, FC_FILE)).empty()) {
    return std::nullopt;
  }
  int index = 0;
  FcPatternGetInteger(prepared.get(), FC_INDEX, 0, &index);
  file.index = index;
  file.variations = text(*prepared, FC_FONT_VARIATIONS);
  int weight = FC_WEIGHT_MEDIUM;
  FcPatternGetInteger(prepared.get(), FC_WEIGHT, 0, &weight);
  file.missingWeight = std::max(FC_WEIGHT_MEDIUM - weight, 0);
  return file;
}

/// Whether the face has all of the characters in one width.
bool haveOneWidth(const FreetypeFace& face, std::u32string_view characters) {
  constexpr double sameEm = 1e-4;
  std::optional<double> common;
  return std::all_of(characters.begin(), characters.end(), [&](char32_t character) {
    const std::optional<double> width = face.advance(character);
    if (!common) {
      common = width;
    }
    return width && std::abs(*width - *common) < sameEm;
  });
}

std::u32string charactersMissing(const FreetypeFace& face, std::u32string_view characters) {
  std::u32string missing;
  for (const char32_t character : characters) {
    if (!face.advance(character)) {
      missing += character;
    }
  }
  return missing;
}

/// The first font whose family passes, and those that lend it what it lacks.
std::vector<FontFile> choose(FcConfig& config, std::initializer_list<const char*> families,
                             std::u32string_view charactersOfOneWidth) {
  std::vector<FontFile> chosen;
  const Pattern wanted = request(config, families);
  FcResult result = FcResultNoMatch;
  const FontSet sorted(
      wanted ? FcFontSort(&config, wanted.get(), FcFalse, nullptr, &result) : nullptr,
      FcFontSetDestroy);
  if (!sorted) {
    return chosen;
  }
  const FreetypeLibrary library;
  std::vector<std::string> passedOver;
  std::u32string missing;
  // A user with more fonts than this and no fitting one gets boxes rather than a start
  // that reads them all.
  constexpr int maxOpened = 64;
  int opened = 0;
  for (int index = 0; index < sorted->nfont && opened < maxOpened; ++index) {
    FcPattern& font = *sorted->fonts[index];
    const std::string family = text(font, FC_FAMILY);
    if (std::find(passedOver.begin(), passedOver.end(), family) != passedOver.end()) {
      continue;
    }
    const std::optional<FontFile> file = fontFile(config, *wanted, font);
    if (!file) {
      continue;
    }
    ++opened;
    const std::optional<FreetypeFace> face = FreetypeFace::open(library, *file);
    if (!face) {
      continue;
    }
    if (chosen.empty()) {
      if (!haveOneWidth(*face, charactersOfOneWidth)) {
        passedOver.push_back(family);
        continue;
      }
      missing = charactersMissing(*face, otherCharacters);
      chosen.push_back(*file);
    } else if (std::u32string stillMissing = charactersMissing(*face, missing);
               stillMissing.size() < missing.size()) {
      missing = std::move(stillMissing);
      chosen.push_back(*file);
    }
    if (missing.empty()) {
      break;
    }
  }
  return chosen;
}

}  // namespace

FontSelection lookUpFonts(const std::string& configurationFile) {
  FontSelection selection;
  if (const Config config = loadConfig(configurationFile)) {
    selection.text = choose(*config, {"system-ui", "sans-serif"}, digits);
    selection.monospaced = choose(*config, {"monospace"}, U"0123456789,M");
  }
  if (selection.monospaced.empty()) {
    selection.monospaced = selection.text;
  }
  if (selection.text.empty()) {
    selection.text = selection.monospaced;
  }
  FcFini();
  return selection;
}

}  // namespace vantora
