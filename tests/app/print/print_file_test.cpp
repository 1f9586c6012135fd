// SPDX-License-Identifier: MIT
#include "app/print/print_file.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "support/temporary_folder.hpp"

namespace vantora::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class PrintFileTest : public testing::Test {
 protected:
  PrintFile file(const std::filesystem::path& place, bool follow) {
    return {place, follow, [this](const std::string& reason) { failures.push_back(reason); }};
  }
  int print(PrintFile& output, double usage) {
    snapshot_.samples.set(MetricID::cpuUsage, MetricSample::valid(usage, "fonte", {}));
    return output.print({configuration_, snapshot_, presentation_, notice_, {}});
  }

  TemporaryFolder folder;
  const std::filesystem::path path = folder / "vantora.prom";
  std::vector<std::string> failures;

 private:
  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
  StatusPresentation presentation_;
  std::optional<std::string> notice_;
};

TEST_F(PrintFileTest, HoldsTheNewestReadingsAlone) {
  PrintFile output = file(path, true);
  EXPECT_EQ(print(output, 10), 0);
  EXPECT_EQ(print(output, 20), 0);
  const std::string text = readBytes(path);
  EXPECT_THAT(text, HasSubstr("vantora_cpu_usage_ratio 0.2\n"));
  EXPECT_THAT(text, Not(HasSubstr("vantora_cpu_usage_ratio 0.1\n")));
  EXPECT_TRUE(text.ends_with("# EOF\n"));
}

TEST_F(PrintFileTest, LeavesNoOtherFileInTheFolder) {
  PrintFile output = file(path, true);
  EXPECT_EQ(print(output, 10), 0);
  std::filesystem::directory_iterator entries(folder.path());
  EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(PrintFileTest, MayBeReadByThoseWhoMayReadWhatStoodThere) {
  writeBytes(path, "");
  const auto permissions = std::filesystem::perms(0640);
  std::filesystem::permissions(path, permissions);
  PrintFile output = file(path, false);
  EXPECT_EQ(print(output, 10), 0);
  EXPECT_EQ(std::filesystem::status(path).permissions(), permissions);
}

TEST_F(PrintFileTest, SaysOnceThatItCannotBeWrittenAndTriesAgain) {
  const auto missing = folder / "later/vantora.prom";
  PrintFile output = file(missing, true);
  EXPECT_EQ(print(output, 10), 0);
  EXPECT_EQ(output.catchUp(), 0);
  EXPECT_TRUE(output.isBehind());
  ASSERT_EQ(failures.size(), 1U);
  EXPECT_NE(failures[0], "");
  std::filesystem::create_directory(folder / "later");
  EXPECT_EQ(output.catchUp(), 0);
  EXPECT_FALSE(output.isBehind());
  EXPECT_THAT(readBytes(missing), HasSubstr("vantora_cpu_usage_ratio 0.1\n"));
  std::filesystem::remove_all(folder / "later");
  EXPECT_EQ(print(output, 40), 0);
  EXPECT_EQ(failures.size(), 2U);
}

TEST_F(PrintFileTest, StaysWholeWhenItCannotBeReplaced) {
  // A folder in its place can be neither replaced nor written.
  std::filesystem::create_directory(path);
  PrintFile output = file(path, false);
  EXPECT_EQ(print(output, 10), EIO);
  EXPECT_EQ(failures.size(), 1U);
  EXPECT_TRUE(std::filesystem::is_directory(path));
}

TEST_F(PrintFileTest, IsGoneOnceNobodyRenewsIt) {
  PrintFile output = file(path, true);
  EXPECT_EQ(print(output, 10), 0);
  output.finish();
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PrintFileTest, StaysAfterASinglePrint) {
  PrintFile output = file(path, false);
  EXPECT_EQ(print(output, 10), 0);
  output.finish();
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(PrintFileTest, IsNotTakenAwayByAProgramThatNeverWroteIt) {
  writeBytes(path, "de outro");
  PrintFile output = file(path, true);
  output.finish();
  EXPECT_EQ(readBytes(path), "de outro");
}

}  // namespace
}  // namespace vantora::test
