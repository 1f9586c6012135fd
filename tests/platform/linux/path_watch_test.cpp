// SPDX-License-Identifier: MIT
#include "platform/linux/path_watch.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/loop_driver.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

using test::runUntil;

class PathWatchTest : public testing::Test {
 protected:
  bool untilTold(int count) {
    return runUntil(loop_, [this, count] { return told_ >= count; });
  }
  // Lets everything be told that was made before.
  void settle() {
    bool isTold = false;
    PathWatch last(loop_.raw(), [&isTold] { isTold = true; });
    ASSERT_TRUE(last.start(folder_.path() / "last"));
    std::filesystem::remove(folder_.path() / "last");
    std::ofstream(folder_.path() / "last").close();
    ASSERT_TRUE(runUntil(loop_, [&isTold] { return isTold; }));
  }

  test::TemporaryFolder folder_;
  UvLoop loop_;
  int told_ = 0;
  PathWatch watch_{loop_.raw(), [this] { ++told_; }};
};

TEST_F(PathWatchTest, TellsThatAFileAppeared) {
  ASSERT_TRUE(watch_.start(folder_.path() / "bus"));
  std::ofstream(folder_.path() / "bus").close();
  EXPECT_TRUE(untilTold(1));
}

TEST_F(PathWatchTest, TellsThatAFileWasReplaced) {
  std::ofstream(folder_.path() / "bus").close();
  ASSERT_TRUE(watch_.start(folder_.path() / "bus"));
  std::ofstream(folder_.path() / "new").close();
  std::filesystem::rename(folder_.path() / "new", folder_.path() / "bus");
  EXPECT_TRUE(untilTold(1));
}

TEST_F(PathWatchTest, FollowsTheWayAsItGrows) {
  const std::filesystem::path bus = folder_.path() / "a" / "b" / "bus";
  ASSERT_TRUE(watch_.start(bus));
  std::filesystem::create_directory(folder_.path() / "a");
  ASSERT_TRUE(untilTold(1));
  ASSERT_TRUE(watch_.start(bus));
  std::filesystem::create_directory(folder_.path() / "a" / "b");
  ASSERT_TRUE(untilTold(2));
  ASSERT_TRUE(watch_.start(bus));
  std::ofstream(bus).close();
  EXPECT_TRUE(untilTold(3));
}

TEST_F(PathWatchTest, TellsThatTheFolderIsGone) {
  const std::filesystem::path bus = folder_.path() / "a" / "bus";
  std::filesystem::create_directory(folder_.path() / "a");
  ASSERT_TRUE(watch_.start(bus));
  std::filesystem::remove(folder_.path() / "a");
  ASSERT_TRUE(untilTold(1));
  ASSERT_TRUE(watch_.start(bus));
  std::filesystem::create_directory(folder_.path() / "a");
  EXPECT_TRUE(untilTold(2));
}

TEST_F(PathWatchTest, IsSilentAboutOthersAndOnceItWasStopped) {
  ASSERT_TRUE(watch_.start(folder_.path() / "bus"));
  std::ofstream(folder_.path() / "busy").close();
  settle();
  EXPECT_EQ(told_, 0);
  watch_.stop();
  std::ofstream(folder_.path() / "bus").close();
  settle();
  EXPECT_EQ(told_, 0);
}

TEST_F(PathWatchTest, WatchesForNoPathThatIsNotAbsolute) {
  EXPECT_FALSE(watch_.start(""));
  EXPECT_FALSE(watch_.start("bus"));
}

}  // namespace
}  // namespace vantora
