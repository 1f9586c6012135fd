// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/linux/text/font_report.hpp"

// What is taken for a report is one: it is written and read back as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto report =
      vantora::parseFontReport(std::string_view(reinterpret_cast<const char*>(data), size));
  if (report && vantora::parseFontReport(vantora::encode(*report)) != report) {
    std::abort();
  }
  return 0;
}
