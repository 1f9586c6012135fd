// SPDX-License-Identifier: MIT
//
// Whatever decodes must encode and decode to the same value.
#include "model/configuration_codec.hpp"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantora;
  const auto decoded = ConfigurationCodec::decode({reinterpret_cast<const char*>(data), size});
  if (decoded) {
    (void)decoded->validated();
    (void)decoded->families();
    const auto encoded = ConfigurationCodec::encode(*decoded);
    if (!encoded || ConfigurationCodec::decode(*encoded) != decoded) {
      std::abort();
    }
  }
  return 0;
}
