// SPDX-License-Identifier: MIT
//
// Looking for a program of the user's at known places. Reads the file system; the
// PATH of the environment is not consulted.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace vantora {

/// The first of `candidates` that is a file which this user may execute, as an absolute
/// path with every symbolic link resolved; nothing when none is. A folder is no
/// executable file, nor is a link that leads nowhere. Any thread.
[[nodiscard]] std::optional<std::string> firstExecutableFile(
    std::span<const std::string> candidates);

/// Whether only a shell could run the file: it is no program in ELF or Mach-O and does not begin
/// with "#!". The kernel refuses such a file with ENOEXEC, upon which execvp(3) gives it to a
/// shell. False for a file that cannot be read.
[[nodiscard]] bool needsShell(const std::string& path);

}  // namespace vantora
