// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace vantora {

/// Runs a program, `command[0]` being its path, and returns what it wrote to its standard
/// output. It reads nothing, and its standard error is this program's. Nothing when it cannot
/// be started, does not exit with 0, writes more than 64 MiB, or takes longer than `timeout`,
/// which kills it.
///
/// Blocks until the program has ended: for those that take milliseconds.
[[nodiscard]] std::optional<std::string> runProgram(const std::vector<std::string>& command,
                                                    std::chrono::milliseconds timeout);

}  // namespace vantora
