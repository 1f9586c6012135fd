// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/font_description.hpp"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <string>
#include <vector>

#include "platform/linux/fonts/fontconfig_lookup.hpp"
#include "platform/linux/fonts/freetype_face.hpp"

namespace vantora {
namespace {

std::string version(int major, int minor, int patch) {
  return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

std::string nameOf(const FreetypeLibrary& library, const std::vector<FontFile>& files) {
  const auto face = files.empty() ? std::nullopt : FreetypeFace::open(library, files.front());
  return face ? face->name() : std::string();
}

}  // namespace

FontReport describeFonts() {
  const FontSelection selection = lookUpFonts();
  const FreetypeLibrary library;
  FontReport report;
  report.text = nameOf(library, selection.text);
  report.monospaced = nameOf(library, selection.monospaced);
  if (library.get() != nullptr) {
    int major = 0;
    int minor = 0;
    int patch = 0;
    FT_Library_Version(library.get(), &major, &minor, &patch);
    report.freetype = version(major, minor, patch);
  }
  const int packed = FcGetVersion();  // major * 10000 + minor * 100 + patch
  report.fontconfig = version(packed / 10'000, packed / 100 % 100, packed % 100);
  return report;
}

}  // namespace vantora
