// SPDX-License-Identifier: MIT
#include "platform/linux/cpu/proc_stat.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

namespace vantora {
namespace {

std::string reasonFor(std::string_view text) {
  const Result<CPUTicks> ticks = parseProcStat(text);
  return ticks ? "a value" : ticks.fault().detail;
}

constexpr const char* incomplete = "Linux /proc/stat: linha \"cpu\" incompleta";
constexpr const char* missing = "Linux /proc/stat: linha \"cpu\" ausente";
constexpr const char* illegible = "Linux /proc/stat: linha \"cpu\" ilegível";

TEST(ProcStat, CountsEverythingButIdleAndWaitingAsActive) {
  const Result<CPUTicks> ticks =
      parseProcStat("cpu  1 20 300 4000 50000 600000 7000000 80000000 900000000 1\ncpu0 1\n");
  ASSERT_TRUE(ticks.hasValue());
  EXPECT_EQ(*ticks, (CPUTicks{.active = 87'600'321, .idle = 54'000}));
}

TEST(ProcStat, ReadsALineOfAnOlderKernelWithFourFields) {
  const Result<CPUTicks> ticks = parseProcStat("cpu  1 2 3 4\n");
  ASSERT_TRUE(ticks.hasValue());
  EXPECT_EQ(*ticks, (CPUTicks{.active = 6, .idle = 4}));
}

TEST(ProcStat, PassesOverFieldsThatItDoesNotKnow) {
  const Result<CPUTicks> ticks = parseProcStat("cpu  1 2 3 4 5 6 7 8 9 10 11 new\n");
  ASSERT_TRUE(ticks.hasValue());
  EXPECT_EQ(ticks->idle, 9U);
}

TEST(ProcStat, DoesNotTakeALineThatIsCutOffForAWholeOne) {
  const std::string whole = "cpu  100 200 300 400 500 600 700 800 0 0\n";
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_EQ(reasonFor(whole.substr(0, size)), incomplete) << size;
  }
}

TEST(ProcStat, WantsAtLeastFourFields) {
  EXPECT_EQ(reasonFor("cpu  1 2 3\n"), incomplete);
  EXPECT_EQ(reasonFor("cpu  \n"), incomplete);
}

TEST(ProcStat, WantsTheSumOfAllProcessorsFirst) {
  for (const char* text :
       {"\n", "cpu\n", "cpu0 1 2 3 4\n", "intr 1 2 3 4\n", "garbage\n", " cpu  1 2 3 4\n"}) {
    EXPECT_EQ(reasonFor(text), missing) << text;
  }
}

TEST(ProcStat, RefusesWhatIsNoNumber) {
  for (const char* text :
       {"cpu  1 2 x 4\n", "cpu  1 2 3x 4\n", "cpu  -1 2 3 4\n", "cpu  1 2 3 4 -5\n",
        "cpu  1.5 2 3 4\n", "cpu  +1 2 3 4\n", "cpu  1\t2 3 4\n", "cpu  0x1 2 3 4\n"}) {
    EXPECT_EQ(reasonFor(text), illegible) << text;
  }
}

TEST(ProcStat, RefusesNumbersAndSumsPastSixtyFourBits) {
  EXPECT_EQ(reasonFor("cpu  18446744073709551616 0 0 0\n"), illegible);
  EXPECT_EQ(reasonFor("cpu  18446744073709551615 1 0 0\n"), illegible);
  EXPECT_EQ(reasonFor("cpu  0 0 0 18446744073709551615 1\n"), illegible);
  EXPECT_TRUE(parseProcStat("cpu  18446744073709551615 0 0 18446744073709551615\n").hasValue());
}

class ProcStatTicksTest : public testing::Test {
 protected:
  ProcStatTicksTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantora-proc-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
  }
  ~ProcStatTicksTest() override { std::filesystem::remove_all(root_); }

  void write(const std::string& text) const { std::ofstream(root_ / "stat") << text; }

  std::filesystem::path root_;
};

TEST_F(ProcStatTicksTest, ReadsTheFileAnewEachTime) {
  write("cpu  1 2 3 4\n");
  ProcStatTicks ticks(root_.string());
  EXPECT_EQ(ticks.read()->idle, 4U);
  write("cpu  1 2 3 5\n");
  EXPECT_EQ(ticks.read()->idle, 5U);
}

TEST_F(ProcStatTicksTest, NamesTheErrorOfAFileThatCannotBeOpenedAndTriesAgain) {
  ProcStatTicks ticks(root_.string());
  const Result<CPUTicks> failed = ticks.read();
  ASSERT_FALSE(failed.hasValue());
  EXPECT_EQ(failed.fault(), Fault::failed("Linux /proc/stat: errno " + std::to_string(ENOENT)));
  write("cpu  1 2 3 4\n");
  EXPECT_TRUE(ticks.read().hasValue());
}

TEST_F(ProcStatTicksTest, NamesTheErrorOfAFileThatCannotBeRead) {
  std::filesystem::create_directory(root_ / "stat");
  ProcStatTicks ticks(root_.string());
  const Result<CPUTicks> failed = ticks.read();
  ASSERT_FALSE(failed.hasValue());
  EXPECT_EQ(failed.fault(), Fault::failed("Linux /proc/stat: errno " + std::to_string(EISDIR)));
}

TEST_F(ProcStatTicksTest, SaysThatAnEmptyFileIsIncomplete) {
  write("");
  EXPECT_EQ(ProcStatTicks(root_.string()).read().fault().detail, incomplete);
}

TEST_F(ProcStatTicksTest, CallsItselfByItsFile) {
  const TickTexts texts = ProcStatTicks().texts();
  EXPECT_EQ(texts.reading, "Linux /proc/stat");
  EXPECT_EQ(texts.noDelta, "Contadores de /proc/stat reiniciados ou sem delta");
}

}  // namespace
}  // namespace vantora
