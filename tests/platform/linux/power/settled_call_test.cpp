// SPDX-License-Identifier: MIT
#include "platform/linux/power/settled_call.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "support/virtual_time.hpp"

namespace vantora {
namespace {

class SettledCallTest : public testing::Test {
 protected:
  test::VirtualTime time;
  std::unique_ptr<TaskQueue> queue = time.makeQueue();
  int calls = 0;
  SettledCall settled{*queue, [this] { ++calls; }};
};

TEST_F(SettledCallTest, CallsAQuarterOfASecondAfterTheLastOfSeveralRequests) {
  settled.request();
  time.advance(Seconds{0.2});
  settled.request();
  settled.request();
  time.advance(Seconds{0.2});
  EXPECT_EQ(calls, 0);
  time.advance(Seconds{0.05});
  EXPECT_EQ(calls, 1);
  time.advance(Seconds{60});
  EXPECT_EQ(calls, 1);
}

TEST_F(SettledCallTest, CallsAgainForALaterRequest) {
  settled.request();
  time.advance(Seconds{1});
  settled.request();
  time.advance(Seconds{1});
  EXPECT_EQ(calls, 2);
}

TEST_F(SettledCallTest, CallsAllTheSameWhileRequestsNeverStop) {
  for (int request = 0; request < 30; ++request) {  // 6 s
    settled.request();
    time.advance(Seconds{0.2});
  }
  EXPECT_EQ(calls, 3);
}

TEST_F(SettledCallTest, SetsNoTimerWhileNothingIsRequested) {
  EXPECT_EQ(time.pendingCount(), 0U);
  settled.request();
  time.advance(Seconds{1});
  EXPECT_EQ(time.pendingCount(), 0U);
}

}  // namespace
}  // namespace vantora
