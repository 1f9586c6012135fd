// SPDX-License-Identifier: MIT
#include "platform/linux/power/settled_call.hpp"

#include <gtest/gtest.h>

#include "platform/linux/power/counted_calls.hpp"

namespace vantora {
namespace {

class SettledCallTest : public test::CountedCalls {
 protected:
  SettledCall settled{*queue, call};
};

TEST_F(SettledCallTest, CallsAQuarterOfASecondAfterTheLastOfSeveralRequests) {
  settled.request();
  time.advance(Seconds{0.2});
  settled.request();
  settled.request();
  EXPECT_EQ(callsAfter(Seconds{0.2}), 0);
  EXPECT_EQ(callsAfter(Seconds{0.05}), 1);
  EXPECT_EQ(callsAfter(Seconds{60}), 1);
}

TEST_F(SettledCallTest, CallsAgainForALaterRequest) {
  settled.request();
  time.advance(Seconds{1});
  settled.request();
  EXPECT_EQ(callsAfter(Seconds{1}), 2);
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
