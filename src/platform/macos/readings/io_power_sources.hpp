// SPDX-License-Identifier: MIT
#pragma once

#include "sampling/battery_collector.hpp"

namespace vantora {

/// Adapter and power sources as IOKit describes them. Keeps nothing between calls.
class IOPowerSources final : public PowerSourcePort {
 public:
  [[nodiscard]] std::optional<PowerSourceDescription> adapterDetails() override;
  [[nodiscard]] std::vector<PowerSourceDescription> powerSources() override;
};

}  // namespace vantora
