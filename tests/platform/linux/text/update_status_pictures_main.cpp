// SPDX-License-Identifier: MIT
//
// Draws the kept pictures anew: `cmake --build --preset dev --target update_status_pictures`.
// Look at each that changed before it is committed.
#include <cstdio>

#include "platform/linux/text/status_pictures.hpp"

int main() {
  for (const vantora::test::StatusPicture& picture : vantora::test::drawStatusPictures()) {
    const std::string path =
        std::string(VANTORA_TEST_DATA) + "/status/golden/" + picture.name + ".pgm";
    if (!vantora::test::writePicture(path, picture.bitmap)) {
      std::fprintf(stderr, "cannot write %s\n", path.c_str());
      return 1;
    }
  }
  return 0;
}
