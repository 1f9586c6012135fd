// SPDX-License-Identifier: MIT
#include "platform/linux/sensors/watched_calls.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>

namespace vantora::test {
namespace {

WatchedCalls* watching = nullptr;

void noteOpening(const char* name) {
  if (watching != nullptr) {
    ++watching->opens;
    if (watching->beforeOpen) {
      watching->beforeOpen(name);
    }
  }
}

}  // namespace

WatchedCalls::WatchedCalls() {
  watching = this;
}
WatchedCalls::~WatchedCalls() {
  watching = nullptr;
}

void WatchedCalls::fail(const std::string& path, int error) {
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) {
    failing_.insert({{status.st_dev, status.st_ino}, error});
  }
}

int WatchedCalls::errorFor(int file) const {
  struct stat status {};
  if (failing_.empty() || ::fstat(file, &status) != 0) {
    return 0;
  }
  const auto found = failing_.find({{status.st_dev, status.st_ino}, 0});
  return found != failing_.end() ? found->error : 0;
}

extern "C" {

// The names are the linker's.
// NOLINTBEGIN
ssize_t __real_pread(int file, void* buffer, size_t size, off_t offset);
int __real_openat(int directory, const char* name, int flags, ...);
DIR* __real_opendir(const char* name);

ssize_t __wrap_pread(int file, void* buffer, size_t size, off_t offset);
int __wrap_openat(int directory, const char* name, int flags, ...);
DIR* __wrap_opendir(const char* name);

ssize_t __wrap_pread(int file, void* buffer, size_t size, off_t offset) {
  if (watching != nullptr) {
    ++watching->reads;
    if (const int error = watching->errorFor(file); error != 0) {
      errno = error;
      return -1;
    }
  }
  return __real_pread(file, buffer, size, offset);
}

int __wrap_openat(int directory, const char* name, int flags, ...) {
  noteOpening(name);
  return __real_openat(directory, name, flags);
}

DIR* __wrap_opendir(const char* name) {
  noteOpening(name);
  return __real_opendir(name);
}
// NOLINTEND
}

}  // namespace vantora::test
