// SPDX-License-Identifier: MIT
#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

#include <filesystem>

namespace vantora::test {

/// While it lives, this thread's files are opened as an ordinary user's: the superuser
/// passes every permission otherwise (setfsuid(2)). `owned` is given to that user first.
class Unprivileged {
 public:
  explicit Unprivileged(const std::filesystem::path& owned) {
    if (::geteuid() == 0) {
      isRoot_ = true;
      give(owned);
      for (const auto& entry : std::filesystem::recursive_directory_iterator(owned)) {
        give(entry.path());
      }
      ::setfsuid(nobody);
    }
  }
  ~Unprivileged() {
    if (isRoot_) {
      ::setfsuid(0);
    }
  }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  static constexpr uid_t nobody = 65534;
  static void give(const std::filesystem::path& path) {
    [[maybe_unused]] const int result = ::lchown(path.c_str(), nobody, static_cast<gid_t>(-1));
  }
  bool isRoot_ = false;
};

}  // namespace vantora::test
