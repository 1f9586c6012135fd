// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// The system's own description of an error number (errno), in the user's language as
/// far as the system has it there, in UTF-8 and without a line break. From any thread;
/// leaves errno and the process's locale alone.
[[nodiscard]] std::string systemErrorText(int errorNumber);

}  // namespace vantora
