// SPDX-License-Identifier: MIT
//
// What host_statistics(HOST_CPU_LOAD_INFO) means: the arithmetic and the texts of the
// Mach tick counters, apart from the call itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "sampling/tick_counters.hpp"

namespace vantora::MachTicks {

inline constexpr TickTexts texts{"Mach HOST_CPU_LOAD_INFO",
                                 "Contadores Mach reiniciados ou sem delta"};

/// host_cpu_load_info's counters in the order of CPU_STATE_USER, _SYSTEM, _IDLE, _NICE
/// (mach/machine.h).
inline constexpr std::size_t counterCount = 4;

/// Widened before the sum: each counter is a natural_t that uses its whole 32 bits.
[[nodiscard]] CPUTicks fromLoad(std::span<const std::uint32_t, counterCount> load);

/// Why host_statistics gave nothing: its kern_return_t, in decimal.
[[nodiscard]] std::string failure(std::int32_t status);

}  // namespace vantora::MachTicks
