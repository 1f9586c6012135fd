// SPDX-License-Identifier: MIT
#include "sampling/apple/mach_ticks.hpp"

namespace vantora::MachTicks {

CPUTicks fromLoad(std::span<const std::uint32_t, counterCount> load) {
  enum State : std::size_t { user, system, idle, nice };
  return {.active = std::uint64_t{load[user]} + load[system] + load[nice], .idle = load[idle]};
}

std::string failure(std::int32_t status) {
  return "Mach host_statistics: " + std::to_string(status);
}

}  // namespace vantora::MachTicks
