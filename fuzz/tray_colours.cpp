// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "platform/linux/x11_tray/xembed_pixels.hpp"

// Whatever a tray says of its colours, three words decide: a plate without them, and a
// foreground that is brighter is never taken for a darker one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vantora::Ink;
  std::vector<std::uint32_t> words(size / sizeof(std::uint32_t));
  if (!words.empty()) {
    std::memcpy(words.data(), data, words.size() * sizeof(std::uint32_t));
  }
  const Ink ink = vantora::trayInk(words);
  if ((ink == Ink::lightOnPlate) != (words.size() < 3)) {
    std::abort();
  }
  if (words.size() < 3) {
    return 0;
  }
  if (vantora::trayInk(std::span(words).first(3)) != ink) {
    std::abort();
  }
  words[1] |= 0xFFFF;
  if (ink == Ink::light && vantora::trayInk(words) != Ink::light) {
    std::abort();
  }
  return 0;
}
