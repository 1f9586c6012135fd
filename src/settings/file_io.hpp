// SPDX-License-Identifier: MIT
//
// Small files that must never hang the reader and never be found half written. Every
// call is synchronous; none throws. A fault's detail is the system's description of the
// error in the user's language.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "model/result.hpp"

namespace vantora::FileIO {

/// The size in bytes, symbolic links followed; nothing inside the result when what
/// is there has no size of its own (a directory, a device, a FIFO, a socket). A
/// path that leads nowhere is an absent fault.
[[nodiscard]] Result<std::optional<std::uint64_t>> fileSize(const std::filesystem::path& path);

/// The whole content of a regular file of at most `limit` bytes. Anything else is a
/// fault, found before a byte is read: a directory, a device, a FIFO, a larger file. A
/// path that leads nowhere is an absent fault.
[[nodiscard]] Result<std::string> readFile(const std::filesystem::path& path, std::size_t limit);

/// Makes the folder and those above it, readable by the user alone. Nothing on success.
[[nodiscard]] std::optional<Fault> makeFolder(const std::filesystem::path& folder);

enum class Permissions {
  userOnly,  ///< 0600, whatever stood there before.
  kept,      ///< Those of the file that is replaced; of a new one, by the user's umask.
};

struct WriteOptions {
  Permissions permissions = Permissions::userOnly;
  /// Where the replaced file stays, byte for byte, for the user alone and whole at every
  /// moment. It takes this place only once the new file has taken its own. A backup that
  /// cannot be made does not stop the writing.
  std::optional<std::filesystem::path> backup;
  /// A new name under which the replaced file is kept as well. Nothing is written if that
  /// fails; a file that has the name already is taken for the kept one.
  std::optional<std::filesystem::path> keepAs;
  /// Whether the content is brought to the disk: not for what is written anew all the time
  /// and means nothing after a restart of the machine.
  bool flush = true;
};

/// Replaces the file, or makes it, so that a reader, even after the process or the
/// machine stopped half way, finds the old content or the new one, whole: a temporary
/// file beside it, flushed to the disk, renamed over it, the folder flushed. (Unflushed, a
/// machine that stops may leave an empty file.) A symbolic
/// link stays and its target is replaced; a directory, a device or a FIFO is refused.
/// Nothing on success; on a fault the file is as it was.
[[nodiscard]] std::optional<Fault> replaceFile(const std::filesystem::path& path,
                                               std::string_view content,
                                               const WriteOptions& options);

}  // namespace vantora::FileIO
