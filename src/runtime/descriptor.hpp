// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace vantora {

/// A file descriptor that is closed unless it is handed on.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { reset(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  /// Closes what it holds and holds `fd`; -1 is none.
  void reset(int fd = -1) {
    if (fd_ >= 0) {
      close(fd_);
    }
    fd_ = fd;
  }
  [[nodiscard]] int get() const { return fd_; }
  /// Whoever takes it closes it.
  [[nodiscard]] int release() { return std::exchange(fd_, -1); }

 private:
  int fd_ = -1;
};

}  // namespace vantora
