// SPDX-License-Identifier: MIT
//
// The system calls that the sysfs readers make, counted, and made to fail as the kernel's
// own files do and ordinary files never would. The linker puts these in the place of the
// C library's (-Wl,--wrap).
#pragma once

#include <sys/types.h>

#include <functional>
#include <set>
#include <string>
#include <utility>

namespace vantora::test {

/// One at a time; calls are watched while it lives.
class WatchedCalls {
 public:
  WatchedCalls();
  ~WatchedCalls();
  WatchedCalls(const WatchedCalls&) = delete;
  WatchedCalls& operator=(const WatchedCalls&) = delete;

  /// Reads of this file fail with `error` from now on, also where it is open already.
  void fail(const std::string& path, int error);
  void mend() { failing_.clear(); }

  void clear() { reads = opens = 0; }

  int reads = 0;
  int opens = 0;  ///< Of files and folders.
  /// Called before a file or folder is opened, with its name as given.
  std::function<void(const std::string&)> beforeOpen;

  /// For the wrapped calls.
  [[nodiscard]] int errorFor(int file) const;

 private:
  struct Failing {
    std::pair<dev_t, ino_t> file;
    int error;
    bool operator<(const Failing& other) const { return file < other.file; }
  };
  std::set<Failing> failing_;
};

}  // namespace vantora::test
