// SPDX-License-Identifier: MIT
#pragma once

#include <istream>
#include <nlohmann/json.hpp>

namespace standin {

/// "set WHAT VALUE": changes what the machine's readings say.
[[nodiscard]] nlohmann::json setMachine(std::istream& arguments);

}  // namespace standin
