// SPDX-License-Identifier: MIT
//
// Whatever answers in the agent's name, reading it is harmless, and a report that is accepted
// is written and read back as the same one.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "app/agent_report.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantora;
  const auto report = parseAgentReport(std::string_view(reinterpret_cast<const char*>(data), size));
  if (report && parseAgentReport(encode(*report)) != report) {
    std::abort();
  }
  return 0;
}
