// SPDX-License-Identifier: MIT
//
// One face of one font file. Opening maps the file, so faces are opened for as long as
// something is read from them and closed again: an open face keeps the pages of its
// file in the process, and a file that is cut short while mapped ends the process.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/linux/fonts/font_selection.hpp"
#include "platform/linux/text/glyph_source.hpp"

// NOLINTBEGIN(readability-identifier-naming): FreeType's names.
struct FT_LibraryRec_;
struct FT_FaceRec_;
// NOLINTEND(readability-identifier-naming)

namespace vantora {

class FreetypeLibrary {
 public:
  FreetypeLibrary();

  /// Null when FreeType could not be started.
  [[nodiscard]] FT_LibraryRec_* get() const { return library_.get(); }

 private:
  struct Close {
    void operator()(FT_LibraryRec_* library) const;
  };
  std::unique_ptr<FT_LibraryRec_, Close> library_;
};

/// Lengths are in ems unless a name says otherwise. Must not outlive its library.
class FreetypeFace {
 public:
  /// Nothing when the file is missing, unreadable, damaged or no outline font.
  [[nodiscard]] static std::optional<FreetypeFace> open(const FreetypeLibrary& library,
                                                        const FontFile& file);

  /// Its family and style, as the file calls them: "DejaVu Sans Book".
  [[nodiscard]] std::string name() const;

  /// Nothing when the face lacks the character or its data is damaged; so below.
  [[nodiscard]] std::optional<double> advance(char32_t character) const;

  /// From the baseline to the top of the character.
  [[nodiscard]] std::optional<double> height(char32_t character) const;

  /// Rendered at a size in pixels, `shift` (0 to 1) pixels to the right of the pen.
  /// Hinted vertically alone: horizontal features meet the pixel rows, widths stay true.
  [[nodiscard]] std::optional<GlyphImage> render(char32_t character, double pixelSize,
                                                 double shift) const;

 private:
  struct Close {
    void operator()(FT_FaceRec_* face) const;
  };
  using Handle = std::unique_ptr<FT_FaceRec_, Close>;

  FreetypeFace(Handle face, int missingWeight);

  [[nodiscard]] bool load(char32_t character, int flags) const;

  Handle face_;
  int missingWeight_;
};

}  // namespace vantora
