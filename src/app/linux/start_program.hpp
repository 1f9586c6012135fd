// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace vantora {

/// Calls `run` and returns its status. Returns 1, with a line on standard error that begins
/// with `name`, where the process has too few descriptors left to begin with, or where the
/// system refuses a thread. Before anything is opened.
[[nodiscard]] int startProgram(const char* name, const std::function<int()>& run);

}  // namespace vantora
