// SPDX-License-Identifier: MIT
#include "platform/linux/screens/screen_scales.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/screens/played_compositor.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora::test {
namespace {

using Scales = std::vector<std::optional<int>>;

struct ScreenScalesTest : testing::Test {
  UvLoop loop;
  std::unique_ptr<PlayedCompositor> compositor = std::make_unique<PlayedCompositor>();
  ScreenScales screens{loop.raw()};
  Scales seen;

  ScreenScalesTest() {
    screens.onChange = [this](std::optional<int> scale) { seen.push_back(scale); };
  }
  // As often as an exchange takes, and once more for what must not come.
  void talk() {
    for (int turn = 0; turn < 5; ++turn) {
      if (compositor != nullptr) {
        compositor->turn();
      }
      uv_run(&loop.raw(), UV_RUN_NOWAIT);
    }
  }
  void follow() {
    screens.follow(compositor->address());
    talk();
  }
};

TEST_F(ScreenScalesTest, TellsTheLargestScaleOfAllScreensOnce) {
  compositor->plug(1);
  compositor->plug(2);
  compositor->plug(1);
  follow();
  EXPECT_EQ(seen, Scales{2});
}

TEST_F(ScreenScalesTest, FollowsAScreenWhoseScaleChanges) {
  PlayedCompositor::Screen& screen = compositor->plug(1);
  follow();
  compositor->setScale(screen, 2);
  talk();
  compositor->setScale(screen, 2);
  talk();
  compositor->setScale(screen, 1);
  talk();
  EXPECT_EQ(seen, (Scales{1, 2, 1}));
}

TEST_F(ScreenScalesTest, FollowsScreensThatComeAndGo) {
  compositor->plug(1);
  follow();
  PlayedCompositor::Screen& added = compositor->plug(3);
  talk();
  compositor->unplug(added);
  talk();
  EXPECT_EQ(seen, (Scales{1, 3, 1}));
}

TEST_F(ScreenScalesTest, KeepsTheScaleWhereTheLastScreenIsGone) {
  PlayedCompositor::Screen& only = compositor->plug(2);
  follow();
  compositor->unplug(only);
  talk();
  EXPECT_EQ(seen, Scales{2});
}

TEST_F(ScreenScalesTest, TakesAScreenOfACompositorWithoutScalesForOne) {
  compositor = std::make_unique<PlayedCompositor>(1);
  compositor->plug(2);
  follow();
  EXPECT_EQ(seen, Scales{1});
}

TEST_F(ScreenScalesTest, KnowsNothingOnceTheCompositorIsGoneAndFollowsTheNext) {
  compositor->plug(2);
  follow();
  compositor.reset();
  talk();
  EXPECT_EQ(seen, (Scales{2, std::nullopt}));
  compositor = std::make_unique<PlayedCompositor>();
  compositor->plug(1);
  follow();
  EXPECT_EQ(seen, (Scales{2, std::nullopt, 1}));
}

TEST_F(ScreenScalesTest, FollowsACompositorOnce) {
  compositor->plug(2);
  follow();
  follow();
  EXPECT_EQ(seen, Scales{2});
}

TEST_F(ScreenScalesTest, SaysNothingWhereThereIsNoCompositor) {
  const std::string address = compositor->address();
  compositor.reset();
  screens.follow(address);
  screens.follow("");
  talk();
  EXPECT_EQ(seen, Scales{});
}

TEST_F(ScreenScalesTest, IsSilentOnceItIsGone) {
  PlayedCompositor::Screen& screen = compositor->plug(1);
  {
    ScreenScales other{loop.raw()};
    other.onChange = [this](std::optional<int> scale) { seen.push_back(scale); };
    other.follow(compositor->address());
    talk();
  }
  compositor->setScale(screen, 2);
  talk();
  EXPECT_EQ(seen, Scales{1});
}

}  // namespace
}  // namespace vantora::test
