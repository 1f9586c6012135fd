// SPDX-License-Identifier: MIT
#include "frameworks/CoreGraphics/glyphs.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

#include "objc/fault.hpp"

namespace standin {
namespace {

struct Faces {
  std::mutex mutex;
  FT_Library library = nullptr;
  FT_Face proportional = nullptr;
  FT_Face monospaced = nullptr;

  Faces() {
    const std::string folder = "/usr/share/fonts/truetype/dejavu/";
    if (FT_Init_FreeType(&library) != 0 ||
        FT_New_Face(library, (folder + "DejaVuSans.ttf").c_str(), 0, &proportional) != 0 ||
        FT_New_Face(library, (folder + "DejaVuSansMono.ttf").c_str(), 0, &monospaced) != 0) {
      fault("the fonts of Debian's fonts-dejavu-core are not there");
    }
  }
};

Faces& faces() {
  static auto* const only = new Faces;
  return *only;
}

FT_Face faceOf(const Typeface& wanted) {
  return wanted.isMonospaced ? faces().monospaced : faces().proportional;
}

// Of text whose UTF-8 is right.
std::vector<FT_ULong> codePoints(const std::string& text) {
  std::vector<FT_ULong> points;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xc0) == 0x80) {
      points.back() = points.back() << 6 | (byte & 0x3f);
    } else {
      points.push_back(byte < 0x80   ? byte
                       : byte < 0xe0 ? byte & 0x1f
                       : byte < 0xf0 ? byte & 0xf
                                     : byte & 7);
    }
  }
  return points;
}

double unitsToPoints(FT_Face face, const Typeface& wanted, double units) {
  return units * wanted.pointSize / face->units_per_EM;
}

double advanceOf(FT_Face face, const Typeface& wanted, FT_ULong point) {
  if (FT_Load_Char(face, point, FT_LOAD_NO_SCALE) != 0) {
    return 0;
  }
  return unitsToPoints(face, wanted, static_cast<double>(face->glyph->metrics.horiAdvance));
}

void blend(const Mask& mask, const FT_Bitmap& glyph, long left, long top) {
  for (unsigned row = 0; row < glyph.rows; ++row) {
    for (unsigned column = 0; column < glyph.width; ++column) {
      const long x = left + column;
      const long y = top + row;
      if (x < 0 || y < 0 || x >= static_cast<long>(mask.width) ||
          y >= static_cast<long>(mask.height)) {
        continue;
      }
      std::uint8_t& pixel =
          mask.pixels[static_cast<std::size_t>(y) * mask.rowBytes + static_cast<std::size_t>(x)];
      const int ink = glyph.buffer[static_cast<int>(row) * glyph.pitch + static_cast<int>(column)];
      pixel = static_cast<std::uint8_t>(pixel + ink - pixel * ink / 255);
    }
  }
}

}  // namespace

double widthOf(const std::string& text, const Typeface& wanted) {
  const std::lock_guard lock(faces().mutex);
  double width = 0;
  for (const FT_ULong point : codePoints(text)) {
    width += advanceOf(faceOf(wanted), wanted, point);
  }
  return width;
}

double ascenderOf(const Typeface& wanted) {
  return unitsToPoints(faceOf(wanted), wanted, faceOf(wanted)->ascender);
}

double descenderOf(const Typeface& wanted) {
  return unitsToPoints(faceOf(wanted), wanted, faceOf(wanted)->descender);
}

void drawText(const Mask& mask, double scale, double x, double y, const std::string& text,
              const Typeface& wanted) {
  constexpr double farthest = 1e5;
  if (std::abs(x) > farthest || std::abs(y) > farthest) {
    return;
  }
  const std::lock_guard lock(faces().mutex);
  FT_Face face = faceOf(wanted);
  FT_Set_Char_Size(face, 0, std::lround(wanted.pointSize * scale * 64), 72, 72);
  const double baseline = static_cast<double>(mask.height) - y * scale;
  double pen = x;
  for (const FT_ULong point : codePoints(text)) {
    const double advance = advanceOf(face, wanted, point);
    if (FT_Load_Char(face, point, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) == 0 &&
        face->glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
      const double left = pen * scale;
      FT_Outline_Translate(&face->glyph->outline, std::lround((left - std::floor(left)) * 64),
                           std::lround((std::ceil(baseline) - baseline) * 64));
      FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
      blend(mask, face->glyph->bitmap,
            static_cast<long>(std::floor(left)) + face->glyph->bitmap_left,
            static_cast<long>(std::ceil(baseline)) - face->glyph->bitmap_top);
    }
    pen += advance;
  }
}

}  // namespace standin
