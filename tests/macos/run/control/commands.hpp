// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace standin {

/// Does what the line says and answers with a JSON value; {"error": ...} for a line that
/// means nothing. Main thread.
[[nodiscard]] std::string runCommand(const std::string& line);

}  // namespace standin
