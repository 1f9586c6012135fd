// SPDX-License-Identifier: MIT
//
// Which font files the picture is drawn with.
#pragma once

#include <string>
#include <vector>

namespace vantora {

struct FontFile {
  std::string path;
  /// FreeType's: the face in its low 16 bits, the named instance above them.
  long index = 0;
  /// Places on a variable font's axes as fontconfig writes them ("wght=500,wdth=100").
  std::string variations;
  /// How much lighter than medium the typeface is, in units of fontconfig's scale of
  /// weights (regular is 20 lighter). The engine thickens the stems accordingly.
  int missingWeight = 0;
  bool operator==(const FontFile&) const = default;
};

/// Each list begins with the typeface itself; the others supply what it lacks. A list may
/// be empty, and its files may be missing or damaged.
struct FontSelection {
  std::vector<FontFile> text;        ///< User interface typeface; all its digits have one width.
  std::vector<FontFile> monospaced;  ///< Every character has one width.
  bool operator==(const FontSelection&) const = default;
};

}  // namespace vantora
