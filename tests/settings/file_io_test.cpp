// SPDX-License-Identifier: MIT
#include "settings/file_io.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <vector>

#include "settings/error_text.hpp"
#include "settings/system_calls.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::writeBytes;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class FileIOTest : public testing::Test {
 protected:
  std::optional<Fault> replace(std::string_view content) {
    FileIO::WriteOptions options;
    options.backup = backup_;
    return FileIO::replaceFile(file_, content, options);
  }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  [[nodiscard]] std::string folderName() const { return folder_.path().filename().string(); }

  test::TemporaryFolder folder_;
  const fs::path file_ = folder_ / "file";
  const fs::path backup_ = folder_ / "backup";
};

TEST_F(FileIOTest, BringsTheContentToTheDiskBeforeItsNameAndTheNameAfterwards) {
  test::SystemCalls calls;
  EXPECT_FALSE(replace("one"));
  EXPECT_THAT(calls.take(), ElementsAre("create file.tmp", "flush file.tmp", "rename file.tmp file",
                                        "flush " + folderName()));
}

TEST_F(FileIOTest, FollowsFortyLinksAndNoMore) {
  fs::create_symlink("end", folder_ / "1");
  for (int link = 2; link <= 41; ++link) {
    fs::create_symlink(std::to_string(link - 1), folder_ / std::to_string(link));
  }
  EXPECT_FALSE(FileIO::replaceFile(folder_ / "40", "new", {}));
  EXPECT_EQ(readBytes(folder_ / "end"), "new");
  const auto fault = FileIO::replaceFile(folder_ / "41", "newer", {});
  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->detail, systemErrorText(ELOOP));
  EXPECT_EQ(readBytes(folder_ / "end"), "new");
}

TEST_F(FileIOTest, ReplacesTheBackupOnlyOnceTheFileIsReplaced) {
  EXPECT_FALSE(replace("one"));
  test::SystemCalls calls;
  EXPECT_FALSE(replace("two"));
  EXPECT_THAT(calls.take(), ElementsAre("create file.tmp", "flush file.tmp", "link file backup.tmp",
                                        "rename file.tmp file", "rename backup.tmp backup",
                                        "flush " + folderName()));
  EXPECT_EQ(readBytes(file_), "two");
  EXPECT_EQ(readBytes(backup_), "one");
}

TEST_F(FileIOTest, KeepsTheBackupWhenTheFileIsNotReplaced) {
  EXPECT_FALSE(replace("one"));
  EXPECT_FALSE(replace("two"));
  test::SystemCalls calls;
  calls.fail("rename file.tmp file", EIO);
  const auto fault = replace("three");
  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->detail, systemErrorText(EIO));
  EXPECT_EQ(readBytes(file_), "two");
  EXPECT_EQ(readBytes(backup_), "one");
  EXPECT_THAT(names(), UnorderedElementsAre("file", "backup"));
}

TEST_F(FileIOTest, CopiesTheBackupWhereAFileCanHaveOneNameOnly) {
  EXPECT_FALSE(replace("one"));
  test::SystemCalls calls;
  calls.fail("link file backup.tmp", EXDEV);
  EXPECT_FALSE(replace("two"));
  EXPECT_THAT(calls.take(),
              ElementsAre("create file.tmp", "flush file.tmp", "link file backup.tmp",
                          "create backup.tmp", "flush backup.tmp", "rename file.tmp file",
                          "rename backup.tmp backup", "flush " + folderName()));
  EXPECT_EQ(readBytes(backup_), "one");
}

TEST_F(FileIOTest, CopiesAFileOfASingleByteToo) {
  writeBytes(file_, "1");
  fs::permissions(file_, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  EXPECT_FALSE(replace("two"));
  EXPECT_EQ(readBytes(backup_), "1");
}

TEST_F(FileIOTest, FlushesBothFoldersOfAFileWhoseBackupIsElsewhere) {
  fs::create_directory(folder_ / "elsewhere");
  writeBytes(folder_ / "elsewhere/file", "one");
  fs::create_symlink("elsewhere/file", file_);
  test::SystemCalls calls;
  EXPECT_FALSE(replace("two"));
  const auto lines = calls.take();
  ASSERT_GE(lines.size(), 2U);
  EXPECT_THAT(std::vector(lines.end() - 2, lines.end()),
              ElementsAre("flush elsewhere", "flush " + folderName()));
  EXPECT_EQ(readBytes(backup_), "one");
}

TEST_F(FileIOTest, ReplacesTheFileWhereTheBackupCannotBeMade) {
  EXPECT_FALSE(replace("one"));
  test::SystemCalls calls;
  calls.fail("link file backup.tmp", EXDEV);
  calls.fail("create backup.tmp", ENOSPC);
  EXPECT_FALSE(replace("two"));
  EXPECT_EQ(readBytes(file_), "two");
  calls.fail("flush backup.tmp", EIO);
  EXPECT_FALSE(replace("three"));
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(FileIOTest, LeavesNothingOfABackupThatCannotTakeItsPlace) {
  EXPECT_FALSE(replace("one"));
  test::SystemCalls calls;
  calls.fail("rename backup.tmp backup", EIO);
  EXPECT_FALSE(replace("two"));
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(FileIOTest, LeavesAnotherNameOfTheUsersWithItsPermissions) {
  writeBytes(file_, "one");
  fs::permissions(file_, fs::perms(0644));
  fs::create_hard_link(file_, folder_ / "other");
  EXPECT_FALSE(replace("two"));
  struct stat status {};
  ASSERT_EQ(::stat((folder_ / "other").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0644U);
  EXPECT_EQ(readBytes(folder_ / "other"), "one");
  ASSERT_EQ(::stat(backup_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(FileIOTest, LetsNoOtherNameOfTheUsersLeadIntoTheBackup) {
  EXPECT_FALSE(replace("one"));
  fs::create_hard_link(file_, folder_ / "other");
  EXPECT_FALSE(replace("two"));
  writeBytes(folder_ / "other", "an editor that writes in place");
  EXPECT_EQ(readBytes(backup_), "one");
}

TEST_F(FileIOTest, TakesABackupThatIsTheFileItselfApart) {
  EXPECT_FALSE(replace("one"));
  fs::create_hard_link(file_, backup_);
  EXPECT_FALSE(replace("two"));
  EXPECT_EQ(readBytes(backup_), "one");
  EXPECT_THAT(names(), UnorderedElementsAre("file", "backup"));
}

class KeepAsTest : public FileIOTest {
 protected:
  KeepAsTest() {
    writeBytes(file_, "odd");
    options_.backup = backup_;
    options_.keepAs = kept_;
  }
  std::optional<Fault> replace(std::string_view content) {
    return FileIO::replaceFile(file_, content, options_);
  }
  const fs::path kept_ = folder_ / "kept";
  FileIO::WriteOptions options_;
};

TEST_F(KeepAsTest, KeepsTheReplacedFileBesideItsBackup) {
  EXPECT_FALSE(replace("new"));
  EXPECT_EQ(readBytes(file_), "new");
  EXPECT_EQ(readBytes(kept_), "odd");
  EXPECT_EQ(readBytes(backup_), "odd");
}

TEST_F(KeepAsTest, KeepsAFileThatItMayNotRead) {
  fs::permissions(file_, fs::perms::none);
  EXPECT_FALSE(replace("new"));
  EXPECT_EQ(readBytes(file_), "new");
  fs::permissions(kept_, fs::perms(0600));
  EXPECT_EQ(readBytes(kept_), "odd");
}

TEST_F(KeepAsTest, CopiesItWhereAFileCanHaveOneNameOnly) {
  test::SystemCalls calls;
  calls.fail("link file kept", EPERM);
  EXPECT_FALSE(replace("new"));
  EXPECT_EQ(readBytes(kept_), "odd");
  const auto lines = calls.take();
  EXPECT_THAT(lines, testing::IsSupersetOf({"create kept", "flush kept"}));
}

TEST_F(KeepAsTest, WritesNothingWhereItCannotBeKept) {
  test::SystemCalls calls;
  calls.fail("link file kept", EPERM);
  calls.fail("flush kept", ENOSPC);
  const auto fault = replace("new");
  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->detail, systemErrorText(ENOSPC));
  EXPECT_EQ(readBytes(file_), "odd");
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(KeepAsTest, KeepsItOnceWhenTheFirstAttemptToReplaceItFailed) {
  {
    test::SystemCalls calls;
    calls.fail("rename file.tmp file", EIO);
    EXPECT_TRUE(replace("new"));
  }
  EXPECT_FALSE(replace("new"));
  EXPECT_EQ(readBytes(kept_), "odd");
  EXPECT_THAT(names(), UnorderedElementsAre("file", "kept", "backup"));
}

TEST_F(KeepAsTest, KeepsNothingWhereNothingIs) {
  fs::remove(file_);
  EXPECT_FALSE(replace("new"));
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(FileIOTest, ClearsAwayTheHalfBackupOfADeadProcess) {
  EXPECT_FALSE(replace("one"));
  // The largest process number that Linux gives is 2^22 (proc(5), pid_max).
  writeBytes(folder_ / ".backup.4194305.0badcafe.tmp", "half");
  EXPECT_FALSE(replace("two"));
  EXPECT_THAT(names(), UnorderedElementsAre("file", "backup"));
}

}  // namespace
}  // namespace vantora
