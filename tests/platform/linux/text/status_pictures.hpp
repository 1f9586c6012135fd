// SPDX-License-Identifier: MIT
//
// The pictures that are kept under tests/status/golden: what each shows, and how its
// pixels are read and written (binary PGM, ink as grey).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "status/bitmap.hpp"

namespace vantora::test {

/// A kept picture; its file is called `name`.pgm.
struct StatusPicture {
  std::string name;
  AlphaBitmap bitmap;
};

/// All of them, drawn now with the pinned fonts.
[[nodiscard]] std::vector<StatusPicture> drawStatusPictures();

/// Nothing when there is no such file, or when it is no picture of this kind.
[[nodiscard]] std::optional<AlphaBitmap> readPicture(const std::string& path);
[[nodiscard]] bool writePicture(const std::string& path, const AlphaBitmap& bitmap);

}  // namespace vantora::test
