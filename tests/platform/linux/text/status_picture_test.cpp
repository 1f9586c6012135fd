// SPDX-License-Identifier: MIT
//
// The whole path from readings to pixels against pictures that were inspected by eye. They
// are drawn anew by the target `update_status_pictures`.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "platform/linux/text/status_pictures.hpp"

namespace vantora::test {
namespace {

const std::string folder = std::string(VANTORA_TEST_DATA) + "/status/golden/";

/// The rasterisers of different releases of FreeType differ in the last bits of grey. A
/// letter that is a quarter of a pixel elsewhere differs by more than this.
constexpr int tolerance = 16;

int maxDifference(const AlphaBitmap& drawn, const AlphaBitmap& kept) {
  int largest = 0;
  for (std::size_t index = 0; index < drawn.pixels.size(); ++index) {
    largest = std::max(largest, std::abs(drawn.pixels[index] - kept.pixels[index]));
  }
  return largest;
}

TEST(StatusPicture, EqualsTheOneThatWasInspected) {
  for (const StatusPicture& picture : drawStatusPictures()) {
    const auto kept = readPicture(folder + picture.name + ".pgm");
    ASSERT_TRUE(kept) << picture.name;
    ASSERT_EQ(picture.bitmap.width, kept->width) << picture.name;
    ASSERT_EQ(picture.bitmap.height, kept->height) << picture.name;
    EXPECT_LE(maxDifference(picture.bitmap, *kept), tolerance) << picture.name;
  }
}

TEST(StatusPicture, HasNoFileThatNothingDraws) {
  const std::vector<StatusPicture> pictures = drawStatusPictures();
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    EXPECT_TRUE(std::any_of(pictures.begin(), pictures.end(), [&](const StatusPicture& picture) {
      return picture.name + ".pgm" == file.path().filename();
    })) << file.path();
  }
}

TEST(StatusPicture, KeepsItsRowsApart) {
  // At least one row without ink between the two lines of the default picture.
  const auto kept = readPicture(folder + "default_modules@1.pgm");
  ASSERT_TRUE(kept);
  int emptyRows = 0;
  for (int row = 8; row < 14; ++row) {
    const auto start = kept->pixels.begin() + static_cast<std::ptrdiff_t>(row) * kept->width;
    emptyRows += std::all_of(start, start + kept->width, [](int pixel) { return pixel == 0; });
  }
  EXPECT_GE(emptyRows, 1);
}

}  // namespace
}  // namespace vantora::test
