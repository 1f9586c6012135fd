// SPDX-License-Identifier: MIT
#include "runtime/private_folder.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>

#include "support/real_processes.hpp"

namespace vantora {
namespace {

using test::HelperFolder;

unsigned permissionsOf(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777U : 0U;
}

TEST(PrivateFolder, CreatesTheFolderAndItsParentsForTheUserAlone) {
  const HelperFolder home;
  const mode_t previous = umask(0);
  EXPECT_EQ(makePrivateFolder(home.path() + "/.config/Vantora"), 0);
  umask(previous);
  EXPECT_EQ(permissionsOf(home.path() + "/.config"), 0700U);
  EXPECT_EQ(permissionsOf(home.path() + "/.config/Vantora"), 0700U);
}

TEST(PrivateFolder, LeavesAFolderThatExistsAsItIs) {
  const HelperFolder home;
  const std::string path = home.path() + "/Vantora";
  ASSERT_EQ(mkdir(path.c_str(), 0755), 0);
  ASSERT_EQ(chmod(path.c_str(), 0755), 0);
  EXPECT_EQ(makePrivateFolder(path), 0);
  EXPECT_EQ(makePrivateFolder(path + "/"), 0);
  EXPECT_EQ(permissionsOf(path), 0755U);
}

TEST(PrivateFolder, AnswersThatAFileIsInTheWay) {
  const HelperFolder home;
  const std::string path = home.path() + "/Vantora";
  std::ofstream(path) << "a file";
  EXPECT_EQ(makePrivateFolder(path), ENOTDIR);
  EXPECT_EQ(makePrivateFolder(path + "/below"), ENOTDIR);
}

TEST(PrivateFolder, AnswersThatTheSystemRefuses) {
  EXPECT_NE(makePrivateFolder("/proc/vantora/folder"), 0);
}

}  // namespace
}  // namespace vantora
