// SPDX-License-Identifier: MIT
//
// The faces of one list of fonts, opened when first asked for and closed together.
#pragma once

#include <optional>
#include <vector>

#include "platform/linux/fonts/font_selection.hpp"
#include "platform/linux/fonts/freetype_face.hpp"

namespace vantora {

/// Lives for one call: see FreetypeFace. Costs nothing until something is asked.
class OpenFonts {
 public:
  explicit OpenFonts(const FontSelection& selection) : selection_(selection) {}
  OpenFonts(const OpenFonts&) = delete;
  OpenFonts& operator=(const OpenFonts&) = delete;

  /// What `read` (FreetypeFace -> optional) gets from the first file that answers.
  template <typename Read>
  auto firstAnswer(bool monospaced, Read read) {
    Faces& faces = monospaced ? monospaced_ : text_;
    const std::vector<FontFile>& files = monospaced ? selection_.monospaced : selection_.text;
    faces.resize(files.size());
    using Answer = decltype(read(std::declval<const FreetypeFace&>()));
    for (std::size_t index = 0; index < files.size(); ++index) {
      if (const FreetypeFace* face = open(faces[index], files[index])) {
        if (Answer answer = read(*face)) {
          return answer;
        }
      }
    }
    return Answer();
  }

 private:
  struct Place {
    bool wasTried = false;
    std::optional<FreetypeFace> face;
  };
  using Faces = std::vector<Place>;

  const FreetypeFace* open(Place& place, const FontFile& file) {
    if (!place.wasTried) {
      place.wasTried = true;
      if (!library_) {
        library_.emplace();
      }
      place.face = FreetypeFace::open(*library_, file);
    }
    return place.face ? &*place.face : nullptr;
  }

  const FontSelection& selection_;
  std::optional<FreetypeLibrary> library_;  // Before the faces, which go first.
  Faces text_;
  Faces monospaced_;
};

}  // namespace vantora
