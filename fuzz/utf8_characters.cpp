// SPDX-License-Identifier: MIT
//
// The characters that are drawn: every byte is consumed, only Unicode scalar values come out,
// and they encode to the repaired text.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "model/utf8.hpp"

namespace {

void append(std::string& text, char32_t character) {
  const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) {
    put(character);
    return;
  }
  if (character < 0x800) {
    put(0xC0U | character >> 6U);
  } else {
    if (character < 0x10000) {
      put(0xE0U | character >> 12U);
    } else {
      put(0xF0U | character >> 18U);
      put(0x80U | (character >> 12U & 0x3FU));
    }
    put(0x80U | (character >> 6U & 0x3FU));
  }
  put(0x80U | (character & 0x3FU));
}

std::string readAndWritten(std::string_view text) {
  std::string written;
  while (!text.empty()) {
    const std::size_t before = text.size();
    const char32_t character = vantora::takeCharacter(text);
    const std::size_t taken = before - text.size();
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (taken < 1 || taken > 4 || character > 0x10FFFF || isSurrogate) {
      std::abort();
    }
    append(written, character);
  }
  return written;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string repaired = vantora::repairedUtf8(bytes);
  if (readAndWritten(bytes) != repaired || readAndWritten(repaired) != repaired) {
    std::abort();
  }
  return 0;
}
