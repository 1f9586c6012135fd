// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace vantora {

/// Owns a file descriptor and closes it; -1 while it owns none.
class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~UniqueFd() { reset(); }

  /// Closes the descriptor that it owns and takes `fd`.
  void reset(int fd = -1) {
    if (fd_ >= 0) {
      ::close(fd_);
    }
    fd_ = fd;
  }
  [[nodiscard]] int get() const { return fd_; }
  /// Gives up ownership; the caller closes the descriptor.
  [[nodiscard]] int release() { return std::exchange(fd_, -1); }
  [[nodiscard]] explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

}  // namespace vantora
