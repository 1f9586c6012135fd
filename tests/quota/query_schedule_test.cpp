// SPDX-License-Identifier: MIT
#include "quota/query_schedule.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "support/virtual_time.hpp"

namespace vantora {
namespace {

constexpr Seconds justBefore{0.001};

class QueryScheduleTest : public testing::Test {
 protected:
  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  int queries_ = 0;
  int displays_ = 0;
  std::optional<QuerySchedule> schedule_{std::in_place,
                                         *queue_,
                                         time_,
                                         [] { return 0.5; },
                                         QuerySchedule::Leeways{Seconds{2}, Seconds{1}},
                                         [this] { ++queries_; },
                                         [this] { ++displays_; }};
};

TEST_F(QueryScheduleTest, RunsAQueryOnceWhenItIsDue) {
  EXPECT_FALSE(schedule_->isQueryScheduled());
  schedule_->scheduleQuery(Seconds{60});
  EXPECT_EQ(queue_->lastLeeway(), Seconds{2});
  EXPECT_TRUE(schedule_->isQueryScheduled());
  time_.advance(Seconds{60} - justBefore);
  EXPECT_EQ(queries_, 0);
  time_.advance(justBefore);
  EXPECT_EQ(queries_, 1);
  EXPECT_FALSE(schedule_->isQueryScheduled());
  time_.advance(Seconds{3600});
  EXPECT_EQ(queries_, 1);
}

TEST_F(QueryScheduleTest, TellsHowLongItIsUntilTheScheduledQuery) {
  EXPECT_EQ(schedule_->untilQuery(), std::nullopt);
  schedule_->scheduleQuery(Seconds{60});
  EXPECT_EQ(schedule_->untilQuery(), Seconds{60});
  time_.advance(Seconds{45});
  EXPECT_EQ(schedule_->untilQuery(), Seconds{15});
  schedule_->scheduleQuery(Seconds{90});
  EXPECT_EQ(schedule_->untilQuery(), Seconds{90});
  time_.advance(Seconds{90});
  EXPECT_EQ(schedule_->untilQuery(), std::nullopt);
  schedule_->scheduleQuery(Seconds{90});
  schedule_->stop();
  EXPECT_EQ(schedule_->untilQuery(), std::nullopt);
}

TEST_F(QueryScheduleTest, ReplacesTheScheduledQuery) {
  schedule_->scheduleQuery(Seconds{60});
  schedule_->scheduleQuery(Seconds{90});
  EXPECT_EQ(time_.pendingCount(), 1U);
  time_.advance(Seconds{89});
  EXPECT_EQ(queries_, 0);
  time_.advance(Seconds{1});
  EXPECT_EQ(queries_, 1);
}

TEST_F(QueryScheduleTest, TakesTheScheduledQueryOffWhenOneBegins) {
  schedule_->scheduleQuery(Seconds{60});
  (void)schedule_->beginQuery();
  EXPECT_FALSE(schedule_->isQueryScheduled());
  schedule_->scheduleQuery(Seconds{60});
  (void)schedule_->beginLogin();
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(QueryScheduleTest, KeepsTheDistanceFromTheLastQuery) {
  (void)schedule_->beginQuery();
  EXPECT_FALSE(schedule_->minIntervalElapsed());
  time_.advance(Seconds{30} - justBefore);
  EXPECT_FALSE(schedule_->minIntervalElapsed());
  time_.advance(justBefore);
  EXPECT_TRUE(schedule_->minIntervalElapsed());
  (void)schedule_->beginLogin();
  EXPECT_TRUE(schedule_->minIntervalElapsed());
}

TEST_F(QueryScheduleTest, CountsAnIntervalFromTheLastQuery) {
  (void)schedule_->beginQuery();
  time_.advance(Seconds{100});
  schedule_->scheduleQueryAtInterval(Seconds{180});
  EXPECT_EQ(time_.untilNext(), Seconds{80});
  schedule_->scheduleQueryAtInterval(Seconds{60});
  EXPECT_EQ(time_.untilNext(), Seconds{1});
}

TEST_F(QueryScheduleTest, RetriesLaterWithEveryFailureUntilTheyAreForgotten) {
  schedule_->scheduleRetry(Seconds{60});
  EXPECT_EQ(time_.untilNext(), Seconds{187.5});
  schedule_->scheduleRetry(Seconds{60});
  EXPECT_EQ(time_.untilNext(), Seconds{367.5});
  schedule_->resetFailures();
  schedule_->scheduleRetry(Seconds{60});
  EXPECT_EQ(time_.untilNext(), Seconds{187.5});
  schedule_->stop();
  schedule_->scheduleRetry(Seconds{60});
  EXPECT_EQ(time_.untilNext(), Seconds{187.5});
}

TEST_F(QueryScheduleTest, RunsTheDisplayOnceAtItsMoment) {
  schedule_->scheduleDisplay(Seconds{10});
  EXPECT_EQ(queue_->lastLeeway(), Seconds{1});
  schedule_->scheduleDisplay(Seconds{20});
  time_.advance(Seconds{20} - justBefore);
  EXPECT_EQ(displays_, 0);
  time_.advance(justBefore);
  EXPECT_EQ(displays_, 1);
  schedule_->scheduleDisplay(Seconds{20});
  schedule_->scheduleDisplay(std::nullopt);
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_EQ(queries_, 0);
}

TEST_F(QueryScheduleTest, VoidsTheTicketsOfEarlierConversations) {
  const QuerySchedule::Ticket first = schedule_->beginQuery();
  EXPECT_TRUE(first.isCurrent());
  const QuerySchedule::Ticket second = schedule_->beginLogin();
  EXPECT_FALSE(first.isCurrent());
  EXPECT_TRUE(second.isCurrent());
  schedule_->stop();
  EXPECT_FALSE(second.isCurrent());
}

TEST_F(QueryScheduleTest, LeavesNothingBehindWhenItStopsOrGoes) {
  const auto begin = [this] {
    const QuerySchedule::Ticket ticket = schedule_->beginQuery();
    schedule_->scheduleQuery(Seconds{1});
    schedule_->scheduleDisplay(Seconds{1});
    EXPECT_EQ(time_.pendingCount(), 2U);
    return ticket;
  };
  (void)begin();
  schedule_->stop();
  EXPECT_EQ(time_.pendingCount(), 0U);
  const QuerySchedule::Ticket ticket = begin();
  EXPECT_TRUE(ticket.isCurrent());
  schedule_.reset();
  EXPECT_EQ(time_.pendingCount(), 0U);
  EXPECT_FALSE(ticket.isCurrent());
}

}  // namespace
}  // namespace vantora
