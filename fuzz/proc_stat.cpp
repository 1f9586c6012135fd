// SPDX-License-Identifier: MIT
#include "platform/linux/cpu/proc_stat.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// Whatever /proc/stat holds, the answer is a value or a failure that says why.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const vantora::Result<vantora::CPUTicks> ticks = vantora::parseProcStat(text);
  const bool isHonest = ticks ? text.starts_with("cpu ") && text.find('\n') != text.npos
                              : !ticks.fault().detail.empty();
  if (!isHonest) {
    std::abort();
  }
  return 0;
}
