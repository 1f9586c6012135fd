// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/linux/text/glyph_message.hpp"

// What is taken for a reply is one: it is encoded to the same bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto reply = vantora::parseGlyphReply(bytes);
  if (reply && vantora::encode(*reply) != bytes) {
    std::abort();
  }
  return 0;
}
