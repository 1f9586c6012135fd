// SPDX-License-Identifier: MIT
#pragma once

#include "sampling/tick_counters.hpp"

namespace vantora {

/// The host's tick counters: host_statistics with HOST_CPU_LOAD_INFO.
class MachTickCounters final : public TickCounters {
 public:
  [[nodiscard]] Result<CPUTicks> read() override;
  [[nodiscard]] TickTexts texts() const override;
};

}  // namespace vantora
