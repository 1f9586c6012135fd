// SPDX-License-Identifier: MIT
//
// The C library's functions below are found in this program before those of the library,
// and ask the kernel themselves.
#include "settings/system_calls.hpp"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <filesystem>

namespace vantora::test {
namespace {

SystemCalls* active = nullptr;

// ".NAME.PROCESS.RANDOM.tmp" is "NAME.tmp".
std::string nameOf(const std::filesystem::path& path) {
  std::string name = path.filename().string();
  if (name.starts_with('.') && name.ends_with(".tmp")) {
    name.resize(name.rfind('.', name.size() - 5));
    name = name.substr(1, name.rfind('.') - 1) + ".tmp";
  }
  return name;
}

std::string nameOf(int descriptor) {
  std::error_code error;
  return nameOf(
      std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error));
}

// Whether the call is to be made; errno says why not.
bool note(const std::string& line) {
  const int error = active != nullptr ? active->note(line) : 0;
  if (error != 0) {
    errno = error;
  }
  return error == 0;
}

}  // namespace

SystemCalls::SystemCalls() {
  active = this;
}

SystemCalls::~SystemCalls() {
  active = nullptr;
}

int SystemCalls::note(const std::string& line) {
  lines_.push_back(line);
  for (const auto& [failing, error] : failures_) {
    if (failing == line) {
      return error;
    }
  }
  return 0;
}

}  // namespace vantora::test

using vantora::test::nameOf;
using vantora::test::note;

extern "C" int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const char* what = (flags & O_EXCL) != 0 ? "create " : "overwrite ";
  if ((flags & O_CREAT) != 0 && !note(what + nameOf(path))) {
    return -1;
  }
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" int fsync(int descriptor) {
  return note("flush " + nameOf(descriptor)) ? static_cast<int>(::syscall(SYS_fsync, descriptor))
                                             : -1;
}

extern "C" int rename(const char* from, const char* to) noexcept {
  return note("rename " + nameOf(from) + " " + nameOf(to))
             ? static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0))
             : -1;
}

extern "C" int link(const char* from, const char* to) noexcept {
  return note("link " + nameOf(from) + " " + nameOf(to))
             ? static_cast<int>(::syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0))
             : -1;
}
