// SPDX-License-Identifier: MIT
#pragma once

namespace vantora::StandardStreams {

/// Whether the program's caller left the descriptor (STDIN_FILENO to STDERR_FILENO) open.
[[nodiscard]] bool isOpen(int descriptor);

/// Puts /dev/null in the place of every standard stream that the caller closed. Otherwise
/// the next files that the program opens get those numbers: messages would be written
/// into them, and libuv ends the program when it is to close one. Once, before anything
/// else is opened.
void openMissing();

}  // namespace vantora::StandardStreams
