// SPDX-License-Identifier: MIT
//
// Pictures as the window's conversation carries them: what decodes is what encode() writes,
// and all bytes survive both.
#include "settings/conversation/base64.hpp"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace base64 = vantora::Base64;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto bytes = base64::decode(text); bytes && base64::encode(*bytes) != text) {
    std::abort();
  }
  const std::vector<std::uint8_t> input(data, data + size);
  if (base64::decode(base64::encode(input)) != input) {
    std::abort();
  }
  return 0;
}
