// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "model/time.hpp"

namespace vantora {

/// The instant in ISO 8601, UTC, cut to whole seconds: "2026-11-21T09:00:00Z".
[[nodiscard]] std::string isoDate(WallTime instant);

}  // namespace vantora
