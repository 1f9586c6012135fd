// SPDX-License-Identifier: MIT
#include "settings/small_disk.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace vantora::test {
namespace {

// What the child ends with: nothing below is an error number of the kernel's.
constexpr int passed = 200;
constexpr int failed = 201;

bool write(const char* path, const std::string& text) {
  const int file = ::open(path, O_WRONLY | O_CLOEXEC);
  const bool isWritten =
      ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ::close(file);
  return isWritten;
}

// As root at once; as another user through a user namespace, in which one is the user and
// the group 0 (user_namespaces(7)).
bool enterMountNamespace() {
  const std::string user = "0 " + std::to_string(::getuid()) + " 1";
  const std::string group = "0 " + std::to_string(::getgid()) + " 1";
  if (::unshare(CLONE_NEWNS) != 0 &&
      (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 || !write("/proc/self/setgroups", "deny") ||
       !write("/proc/self/uid_map", user) || !write("/proc/self/gid_map", group))) {
    return false;
  }
  return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// Nothing that is thrown gets out: the child must not go on with the other tests.
int runInChild(const std::filesystem::path& folder, std::size_t bytes,
               const std::function<void()>& body) noexcept {
  const std::string options = "mode=0700,size=" + std::to_string(bytes);
  if (!enterMountNamespace() ||
      ::mount("vantora-test", folder.c_str(), "tmpfs", 0, options.c_str()) != 0) {
    return errno;
  }
  body();
  return testing::Test::HasFailure() ? failed : passed;
}

}  // namespace

void onASmallDisk(const std::filesystem::path& folder, std::size_t bytes,
                  const std::function<void()>& body) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const int result = runInChild(folder, bytes, body);
    std::fflush(nullptr);  // The reports of what failed.
    ::_exit(result);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
  if (WEXITSTATUS(status) < passed) {
    GTEST_SKIP() << "no file system of one's own here: " << std::strerror(WEXITSTATUS(status));
  }
  EXPECT_EQ(WEXITSTATUS(status), passed);
}

std::filesystem::path fillDisk(const std::filesystem::path& folder, std::size_t left) {
  std::filesystem::path ballast = folder / "ballast";
  const int file = ::open(ballast.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  EXPECT_GE(file, 0);
  struct statvfs disk {};
  EXPECT_EQ(::statvfs(folder.c_str(), &disk), 0);
  const std::size_t free = disk.f_bavail * disk.f_frsize;
  const std::string bytes(free - std::min(free, left), '#');
  EXPECT_EQ(::write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::close(file);
  return ballast;
}

}  // namespace vantora::test
