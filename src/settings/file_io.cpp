// SPDX-License-Identifier: MIT
#include "settings/file_io.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <utility>

#include "model/uuid.hpp"
#include "runtime/private_folder.hpp"
#include "runtime/unique_fd.hpp"
#include "settings/error_text.hpp"

namespace vantora::FileIO {
namespace {

namespace fs = std::filesystem;

// As many links in a row as Linux follows (path_resolution(7)).
constexpr int maxLinks = 40;

Fault systemFault(int errorNumber) {
  std::string text = systemErrorText(errorNumber);
  return errorNumber == ENOENT || errorNumber == ENOTDIR ? Fault::absent(std::move(text))
                                                         : Fault::failed(std::move(text));
}

// False with errno when the system reports a late write error.
bool closeChecked(UniqueFd& file) {
  return !file || ::close(file.release()) == 0;
}

// The most of `buffer` that one uninterrupted read gives; -1 with errno.
ssize_t readSome(int fd, char* buffer, std::size_t size) {
  ssize_t count = 0;
  do {
    count = ::read(fd, buffer, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) {
      return false;
    }
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
  }
  return true;
}

void flushFolder(const fs::path& folder) {
  // Some file systems cannot flush a folder; the rename is then as durable as they make it.
  const UniqueFd opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened) {
    (void)::fsync(opened.get());
  }
}

// Where the links lead, whether there is a file or not.
Result<fs::path> followLinks(fs::path path) {
  for (int followed = 0; followed <= maxLinks; ++followed) {
    std::error_code error;
    fs::path target = fs::read_symlink(path, error);
    if (error) {
      return path;  // No link, or nothing there at all.
    }
    path = target.is_absolute() ? std::move(target) : path.parent_path() / target;
  }
  return systemFault(ELOOP);
}

// Temporary files are named after the process that writes them, so that those of a
// process that died half way can be distinguished from those of a running one.
std::string temporaryPrefix(const fs::path& file) {
  // Cut, so that the longest name that a file may have still leaves room for the rest.
  return "." + file.filename().string().substr(0, 128) + ".";
}
constexpr std::string_view temporarySuffix = ".tmp";

fs::path temporaryPath(const fs::path& file) {
  return file.parent_path() / (temporaryPrefix(file) + std::to_string(::getpid()) + "." +
                               UUID::random().text().substr(0, 8) + std::string(temporarySuffix));
}

void removeAbandoned(const fs::path& file) {
  const std::string prefix = temporaryPrefix(file);
  std::error_code error;
  for (fs::directory_iterator at(file.parent_path(), error), end; !error && at != end;
       at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (!name.starts_with(prefix) || !name.ends_with(temporarySuffix)) {
      continue;
    }
    pid_t owner = 0;
    const auto [rest, failure] =
        std::from_chars(name.data() + prefix.size(), name.data() + name.size(), owner);
    if (failure == std::errc{} && *rest == '.' && owner > 0 && ::kill(owner, 0) != 0 &&
        errno == ESRCH) {
      (void)::unlink(at->path().c_str());
    }
  }
}

bool copyInto(const fs::path& source, int target) {
  const UniqueFd from(::open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!from) {
    return false;
  }
  char buffer[65536];
  ssize_t count = 0;
  while ((count = readSome(from.get(), buffer, sizeof buffer)) > 0) {
    if (!writeAll(target, {buffer, static_cast<std::size_t>(count)})) {
      return false;
    }
  }
  return count == 0 && ::fsync(target) == 0;
}

// A copy of the file in a new one, on the disk. False with errno when it could not be made;
// what there is of it is gone then.
bool copyTo(const fs::path& file, const fs::path& copy) {
  UniqueFd target(::open(copy.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!target) {
    return false;
  }
  if (copyInto(file, target.get()) && closeChecked(target)) {
    return true;
  }
  const int error = errno;
  (void)::unlink(copy.c_str());
  errno = error;
  return false;
}

// The file's content under a temporary name beside the backup. A second name for the file
// takes no time and no space whatever its size; a file that has a name of the user's
// beside ours, or that others may read, is copied instead: such a name would lead into the
// backup, and would lose its permissions with it.
std::optional<fs::path> prepareBackup(const fs::path& file, const fs::path& backup) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  removeAbandoned(backup);
  fs::path temporary = temporaryPath(backup);
  const bool isOurs = status.st_nlink == 1 && (status.st_mode & 07777) == (S_IRUSR | S_IWUSR);
  if ((isOurs && ::link(file.c_str(), temporary.c_str()) == 0) || copyTo(file, temporary)) {
    return temporary;
  }
  return std::nullopt;
}

// Gives the file, if there is one, a further name, or a copy under that name where it can
// have one only. 0, or the error number.
int keepUnder(const fs::path& file, const fs::path& name) {
  if (::link(file.c_str(), name.c_str()) == 0 || errno == EEXIST || errno == ENOENT) {
    return 0;
  }
  return copyTo(file, name) ? 0 : errno;
}

// Fills the temporary file and brings it to the disk. 0, or the error number.
int fillTemporary(const fs::path& temporary, std::string_view content, const fs::path& replaced,
                  const WriteOptions& options) {
  const mode_t mode = options.permissions == Permissions::userOnly ? 0600 : 0666;
  UniqueFd file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!file) {
    return errno;
  }
  struct stat status {};
  if (options.permissions == Permissions::kept && ::stat(replaced.c_str(), &status) == 0 &&
      S_ISREG(status.st_mode)) {
    (void)::fchmod(file.get(), status.st_mode & 07777);
  }
  if (!writeAll(file.get(), content) || (options.flush && ::fsync(file.get()) != 0) ||
      !closeChecked(file)) {
    return errno;
  }
  return 0;
}

}  // namespace

Result<std::optional<std::uint64_t>> fileSize(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    return systemFault(errno);
  }
  if (!S_ISREG(status.st_mode)) {
    return std::optional<std::uint64_t>{};
  }
  return std::optional(static_cast<std::uint64_t>(status.st_size));
}

Result<std::string> readFile(const fs::path& path, std::size_t limit) {
  // Asked first by name: to open a device or a FIFO can already do something.
  const auto size = fileSize(path);
  if (!size) {
    return size.fault();
  }
  if (!*size) {
    std::error_code error;
    return Fault::failed(systemErrorText(fs::is_directory(path, error) ? EISDIR : EINVAL));
  }
  if (**size > limit) {
    return Fault::failed(systemErrorText(EFBIG));
  }
  const UniqueFd file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file) {
    return systemFault(errno);
  }
  struct stat status {};
  if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return Fault::failed(systemErrorText(EINVAL));  // Exchanged since.
  }
  // The size is a promise that the kernel's own files break: they say 0 and go on.
  std::string content;
  char buffer[16384];
  ssize_t count = 0;
  while ((count = readSome(file.get(), buffer, sizeof buffer)) > 0) {
    content.append(buffer, static_cast<std::size_t>(count));
    if (content.size() > limit) {
      return Fault::failed(systemErrorText(EFBIG));
    }
  }
  if (count < 0) {
    return systemFault(errno);
  }
  return content;
}

std::optional<Fault> makeFolder(const fs::path& folder) {
  const int error = makePrivateFolder(folder.string());
  return error != 0 ? std::optional(systemFault(error)) : std::nullopt;
}

std::optional<Fault> replaceFile(const fs::path& path, std::string_view content,
                                 const WriteOptions& options) {
  const Result<fs::path> resolved = followLinks(path);
  if (!resolved) {
    return resolved.fault();
  }
  const fs::path& target = *resolved;
  struct stat status {};
  if (::stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    return systemFault(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  }
  if (options.permissions == Permissions::userOnly) {
    removeAbandoned(target);
  }
  const fs::path temporary = temporaryPath(target);
  int error = fillTemporary(temporary, content, target, options);
  if (error == 0 && options.keepAs) {
    error = keepUnder(target, *options.keepAs);
  }
  std::optional<fs::path> previous;
  if (error == 0) {
    previous = options.backup ? prepareBackup(target, *options.backup) : std::nullopt;
    if (::rename(temporary.c_str(), target.c_str()) == 0) {
      // Only now: the backup is what was there before a writing that succeeded.
      if (previous && ::rename(previous->c_str(), options.backup->c_str()) != 0) {
        (void)::unlink(previous->c_str());
      }
      if (options.flush) {
        flushFolder(target.parent_path());
      }
      if (previous && options.backup->parent_path() != target.parent_path()) {
        flushFolder(options.backup->parent_path());
      }
      return std::nullopt;
    }
    error = errno;
  }
  if (previous) {
    (void)::unlink(previous->c_str());
  }
  (void)::unlink(temporary.c_str());
  return systemFault(error);
}

}  // namespace vantora::FileIO
