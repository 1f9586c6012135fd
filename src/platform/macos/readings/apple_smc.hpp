// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "sampling/apple/smc_connection.hpp"

namespace vantora {

/// Opens the AppleSMC user client; null where there is no such service or it refuses.
[[nodiscard]] std::unique_ptr<SMCConnection> openAppleSMC();

}  // namespace vantora
