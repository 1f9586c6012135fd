// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/x11_tray/xembed_pixels.hpp"

// Whatever a client has put into RESOURCE_MANAGER, the scale is one that can be drawn, and
// the first resolution that can be read decides.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const int scale = vantora::scaleFromResources(text);
  const std::string afterOne = "Xft.dpi:\t192\n" + std::string(text);
  if (scale < 1 || scale > 4 || vantora::scaleFromResources(afterOne) != 2) {
    std::abort();
  }
  return 0;
}
