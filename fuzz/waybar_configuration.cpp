// SPDX-License-Identifier: MIT
//
// What a waybar has for its configuration, command line and environment: texts of strangers.
#include "platform/linux/panels/waybar_configuration.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "model/json.hpp"
#include "platform/linux/panels/plain_json.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  // What is strict already means the same afterwards, and nothing grows.
  const std::string plain = vantora::plainJson(text);
  const auto strict = vantora::parseJson(text);
  if (plain.size() != text.size() || (strict && vantora::parseJson(plain) != strict)) {
    std::abort();
  }
  (void)vantora::waybarLayout(text);
  const std::string_view half = text.substr(0, size / 2);
  if (vantora::waybarConfigurations(half, text.substr(size / 2)).empty()) {
    std::abort();
  }
  return 0;
}
