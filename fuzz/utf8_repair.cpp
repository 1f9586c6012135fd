// SPDX-License-Identifier: MIT
//
// Bytes of other programs as text: the result is well-formed, so that repairing it again
// changes nothing, and no well-formed part is lost.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "model/utf8.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string repaired = vantora::repairedUtf8(bytes);
  if (vantora::repairedUtf8(repaired) != repaired) {
    std::abort();
  }
  // Between two ASCII letters each part is repaired by itself.
  if (vantora::repairedUtf8("a" + std::string(bytes) + "z") != "a" + repaired + "z") {
    std::abort();
  }
  return 0;
}
