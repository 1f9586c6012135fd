// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "settings/toolkit/x_settings.hpp"

// Whatever a settings manager publishes, a text that is found lies within it, and what comes
// behind it is of no matter.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span bytes(data, size);
  const auto text = vantora::xSettingText(bytes, "Net/ThemeName");
  if (text && text->size() > size) {
    std::abort();
  }
  if (text && vantora::xSettingText(bytes.first(size - 1), "Net/ThemeName") &&
      vantora::xSettingText(bytes.first(size - 1), "Net/ThemeName") != text) {
    std::abort();
  }
  return 0;
}
