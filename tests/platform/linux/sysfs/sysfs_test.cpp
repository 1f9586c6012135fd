// SPDX-License-Identifier: MIT
#include "platform/linux/sysfs/sysfs.hpp"

#include <gtest/gtest.h>

#include <cerrno>

#include "support/sysfs_tree.hpp"

namespace vantora {
namespace {

class SysfsFile : public testing::Test {
 protected:
  Sysfs::Number numberFrom(std::string_view bytes) {
    tree.write("power_supply/x", bytes);
    return Sysfs::readNumber(directory.get(), "x");
  }

  test::SysfsTree tree;
  UniqueFd directory = Sysfs::openDirectory(tree.powerSupply());
  Sysfs::Buffer buffer{};
};

TEST_F(SysfsFile, ReadsWholeNumbersWithAndWithoutALineEnd) {
  EXPECT_EQ(numberFrom("42\n").ifRead(), 42);
  EXPECT_EQ(numberFrom("42").ifRead(), 42);
  EXPECT_EQ(numberFrom("-17\n").ifRead(), -17);
  EXPECT_EQ(numberFrom("+17\n").ifRead(), 17);
  EXPECT_EQ(numberFrom("0\n").ifRead(), 0);
  EXPECT_EQ(numberFrom("9223372036854775807\n").ifRead(), INT64_MAX);
  EXPECT_EQ(numberFrom("-9223372036854775808\n").ifRead(), INT64_MIN);
}

TEST_F(SysfsFile, RefusesWhatIsNoNumber) {
  for (const std::string_view bytes :
       {"", "\n", "-", "+", "+-1", "--1", "abc\n", "12abc\n", "0x12\n", "1.5\n", " 1\n", "1 2\n",
        "12\n13\n", "nan\n", "\xff\xfe"}) {
    EXPECT_EQ(numberFrom(bytes).error, EINVAL) << bytes;
    EXPECT_FALSE(numberFrom(bytes).ifRead());
  }
  EXPECT_EQ(numberFrom(std::string_view("12\0", 3)).error, EINVAL);
}

TEST_F(SysfsFile, RefusesNumbersOfMoreThanSixtyFourBits) {
  EXPECT_EQ(numberFrom("9223372036854775808\n").error, ERANGE);
  EXPECT_EQ(numberFrom("-9223372036854775809\n").error, ERANGE);
  EXPECT_EQ(numberFrom("99999999999999999999999999\n").error, ERANGE);
}

TEST_F(SysfsFile, RefusesAFileThatDoesNotEnd) {
  EXPECT_EQ(numberFrom(std::string(4096, '1')).error, EFBIG);
  EXPECT_EQ(numberFrom(std::string(128, '1')).error, EFBIG);
  EXPECT_EQ(numberFrom(std::string(126, '0') + "7").ifRead(), 7);
}

TEST_F(SysfsFile, SaysThatAnAttributeIsMissing) {
  EXPECT_EQ(Sysfs::readNumber(directory.get(), "y").error, ENOENT);
  EXPECT_EQ(Sysfs::readText(directory.get(), "y", buffer).error, ENOENT);
}

TEST_F(SysfsFile, DoesNotHangOnAPipeOrAFolder) {
  tree.putPipe("power_supply/pipe");
  tree.putFolder("power_supply/folder");
  EXPECT_NE(Sysfs::readNumber(directory.get(), "pipe").error, 0);
  EXPECT_NE(Sysfs::readNumber(directory.get(), "folder").error, 0);
}

TEST_F(SysfsFile, CutsTheLineEndOfATextAndNothingElse) {
  tree.write("power_supply/status", "Not charging\n");
  EXPECT_EQ(Sysfs::readText(directory.get(), "status", buffer).text, "Not charging");
  tree.write("power_supply/status", "Left side  \n");
  EXPECT_EQ(Sysfs::readText(directory.get(), "status", buffer).text, "Left side");
  tree.write("power_supply/status", "");
  EXPECT_EQ(Sysfs::readText(directory.get(), "status", buffer).text, "");
}

TEST_F(SysfsFile, SeesANewValueInAFileThatIsKeptOpen) {
  tree.write("power_supply/x", "1\n");
  const UniqueFd file = Sysfs::open(directory.get(), "x");
  EXPECT_EQ(Sysfs::readNumber(file.get()).ifRead(), 1);
  tree.write("power_supply/x", "23\n");
  EXPECT_EQ(Sysfs::readNumber(file.get()).ifRead(), 23);
}

TEST_F(SysfsFile, ListsNamesInOrderAndNothingWhereThereIsNoFolder) {
  tree.write("power_supply/b", "");
  tree.write("power_supply/a", "");
  tree.write("power_supply/.hidden", "");
  EXPECT_EQ(Sysfs::namesIn(tree.powerSupply()), (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(Sysfs::namesIn(tree.path("nowhere")).empty());
  EXPECT_FALSE(Sysfs::openDirectory(tree.path("nowhere")));
}

}  // namespace
}  // namespace vantora
