// SPDX-License-Identifier: MIT
#pragma once

namespace vantora::StandardDescriptors {

/// Whether the program's caller left the descriptor (STDIN_FILENO to STDERR_FILENO) open.
[[nodiscard]] bool isOpen(int descriptor);

/// Puts /dev/null in the place of every standard stream that the caller closed. Otherwise
/// the next files that the program opens get those numbers: messages would be written
/// into them, and libuv ends the program when it is to close one. Once, before anything
/// else is opened.
void openMissing();

/// Whether the process may open `count` more descriptors. Opens them for a moment; standard
/// input must be open.
[[nodiscard]] bool canOpen(int count);

}  // namespace vantora::StandardDescriptors
