// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/freetype_face.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace vantora {
namespace {

constexpr double fixedPoint26 = 64;

/// Regular stems are about 0.09 em wide and medium ones 0.11: 0.001 em for each of the
/// 20 units between them. Beyond the cap, counters would fill.
double missingStem(int missingWeight) {
  constexpr double emPerUnit = 0.001;
  constexpr int maxUnits = 40;
  return emPerUnit * std::clamp(missingWeight, 0, maxUnits);
}

/// No letter of a sound font is larger, in ems. Damaged tables would otherwise ask for
/// pictures of any size.
constexpr double maxLetterSize = 8;

bool isSound(double ems) {
  return ems >= 0 && ems <= maxLetterSize;
}

bool isSound(const FT_Outline& outline, double pixelSize) {
  FT_BBox box;
  FT_Outline_Get_CBox(&outline, &box);
  const long most = std::lround(maxLetterSize * pixelSize * fixedPoint26);
  return std::abs(box.xMin) <= most && std::abs(box.xMax) <= most && std::abs(box.yMin) <= most &&
         std::abs(box.yMax) <= most;
}

FT_ULong axisTag(std::string_view name) {
  FT_ULong tag = 0;
  for (const char letter : name) {
    tag = tag << 8U | static_cast<unsigned char>(letter);
  }
  return tag;
}

/// Moves the variable face to the places that `variations` names; axes that it does
/// not name stay at their defaults. Without effect on other faces.
void applyVariations(FT_Library library, FT_Face face, std::string_view variations) {
  FT_MM_Var* axes = nullptr;
  if (variations.empty() || FT_Get_MM_Var(face, &axes) != 0) {
    return;
  }
  std::vector<FT_Fixed> places;
  for (FT_UInt axis = 0; axis < axes->num_axis; ++axis) {
    places.push_back(axes->axis[axis].def);
  }
  while (!variations.empty()) {
    const std::string setting(variations.substr(0, variations.find(',')));
    variations.remove_prefix(std::min(setting.size() + 1, variations.size()));
    const std::size_t sign = setting.find('=');
    if (sign == std::string::npos) {
      continue;
    }
    const FT_ULong tag = axisTag(std::string_view(setting).substr(0, sign));
    // Whole numbers in practice: the desired weight.
    const long value = std::strtol(setting.c_str() + sign + 1, nullptr, 10);
    for (FT_UInt axis = 0; axis < axes->num_axis; ++axis) {
      if (axes->axis[axis].tag == tag) {
        places[axis] = std::clamp(static_cast<FT_Fixed>(std::clamp(value, -30000L, 30000L)) * 65536,
                                  axes->axis[axis].minimum, axes->axis[axis].maximum);
      }
    }
  }
  FT_Set_Var_Design_Coordinates(face, axes->num_axis, places.data());
  FT_Done_MM_Var(library, axes);
}

}  // namespace

FreetypeLibrary::FreetypeLibrary() {
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) == 0) {
    library_.reset(library);
  }
}

void FreetypeLibrary::Close::operator()(FT_LibraryRec_* library) const {
  FT_Done_FreeType(library);
}

void FreetypeFace::Close::operator()(FT_FaceRec_* face) const {
  FT_Done_Face(face);
}

FreetypeFace::FreetypeFace(Handle face, int missingWeight)
    : face_(std::move(face)), missingWeight_(missingWeight) {}

std::optional<FreetypeFace> FreetypeFace::open(const FreetypeLibrary& library,
                                               const FontFile& file) {
  FT_Face raw = nullptr;
  if (library.get() == nullptr ||
      FT_New_Face(library.get(), file.path.c_str(), file.index, &raw) != 0) {
    return std::nullopt;
  }
  Handle face(raw);
  if (!FT_IS_SCALABLE(raw) || raw->units_per_EM == 0) {
    return std::nullopt;
  }
  applyVariations(library.get(), raw, file.variations);
  return FreetypeFace(std::move(face), file.missingWeight);
}

bool FreetypeFace::load(char32_t character, int flags) const {
  const FT_UInt glyph = FT_Get_Char_Index(face_.get(), character);
  return glyph != 0 && FT_Load_Glyph(face_.get(), glyph, flags) == 0;
}

std::string FreetypeFace::name() const {
  const char* family = face_->family_name;
  const char* style = face_->style_name;
  std::string text = family != nullptr ? family : "";
  return style != nullptr ? text.append(text.empty() ? "" : " ").append(style) : text;
}

std::optional<double> FreetypeFace::advance(char32_t character) const {
  if (!load(character, FT_LOAD_NO_SCALE)) {
    return std::nullopt;
  }
  const double ems = static_cast<double>(face_->glyph->metrics.horiAdvance) / face_->units_per_EM;
  return isSound(ems) ? std::optional(ems) : std::nullopt;
}

std::optional<double> FreetypeFace::height(char32_t character) const {
  if (!load(character, FT_LOAD_NO_SCALE)) {
    return std::nullopt;
  }
  const double ems = static_cast<double>(face_->glyph->metrics.horiBearingY) / face_->units_per_EM;
  return isSound(ems) ? std::optional(ems) : std::nullopt;
}

std::optional<GlyphImage> FreetypeFace::render(char32_t character, double pixelSize,
                                               double shift) const {
  const auto size = static_cast<FT_F26Dot6>(std::lround(pixelSize * fixedPoint26));
  constexpr FT_UInt pointsPerInch = 72;
  if (FT_Set_Char_Size(face_.get(), 0, size, pointsPerInch, pointsPerInch) != 0 ||
      !load(character, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) ||
      face_->glyph->format != FT_GLYPH_FORMAT_OUTLINE ||
      !isSound(face_->glyph->outline, pixelSize)) {
    return std::nullopt;
  }
  FT_Outline& outline = face_->glyph->outline;
  // Stems grow to both sides, heights stay on their pixel rows.
  const FT_Pos stem = std::lround(missingStem(missingWeight_) * pixelSize * fixedPoint26);
  FT_Outline_EmboldenXY(&outline, stem, 0);
  FT_Outline_Translate(&outline, std::lround(shift * fixedPoint26) - stem / 2, 0);
  if (FT_Render_Glyph(face_->glyph, FT_RENDER_MODE_NORMAL) != 0) {
    return std::nullopt;
  }
  const FT_Bitmap& bitmap = face_->glyph->bitmap;
  GlyphImage image{face_->glyph->bitmap_left, face_->glyph->bitmap_top,
                   AlphaBitmap(static_cast<int>(bitmap.width), static_cast<int>(bitmap.rows))};
  for (int row = 0; row < image.ink.height; ++row) {
    const unsigned char* source = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
    std::copy_n(source, image.ink.width,
                image.ink.pixels.begin() + static_cast<std::ptrdiff_t>(row) * image.ink.width);
  }
  return image;
}

}  // namespace vantora
