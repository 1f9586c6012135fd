// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

namespace standin {

/// What a person could see of the program, and what it holds of the system.
[[nodiscard]] nlohmann::json currentState();

}  // namespace standin
