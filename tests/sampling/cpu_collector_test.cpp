// SPDX-License-Identifier: MIT
#include "sampling/cpu_collector.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/fake_tick_counters.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

class CPUCollectorTest : public testing::Test {
 protected:
  test::VirtualTime time_;
  test::FakeTickCounters counters_;
  CPUCollector collector_{counters_, time_};

  MetricSample sampleAt(std::uint64_t active, std::uint64_t idle) {
    counters_.set(active, idle);
    return collector_.sample();
  }
};

const MetricSample firstReading = MetricSample::waiting("Mach HOST_CPU_LOAD_INFO");
const MetricSample noDelta = MetricSample::waiting("Contadores Mach reiniciados ou sem delta");

TEST_F(CPUCollectorTest, ReportsNoRateOnTheFirstSample) {
  EXPECT_EQ(sampleAt(100, 900), firstReading);
}

TEST_F(CPUCollectorTest, ReportsTheShareOfActiveTicksSinceTheReadingBefore) {
  (void)sampleAt(100, 900);
  EXPECT_EQ(sampleAt(125, 975), MetricSample::valid(25.0, "Mach HOST_CPU_LOAD_INFO", time_.now()));
  EXPECT_EQ(sampleAt(126, 977).value, 100.0 / 3.0);
}

TEST_F(CPUCollectorTest, StampsAValueWithTheWallClock) {
  (void)sampleAt(100, 900);
  time_.advance(Seconds{2});
  EXPECT_EQ(sampleAt(101, 901).sampledAt, time_.now());
}

TEST_F(CPUCollectorTest, WaitsWhenNoTickElapsedInsteadOfReportingZero) {
  (void)sampleAt(100, 900);
  EXPECT_EQ(sampleAt(100, 900), noDelta);
}

TEST_F(CPUCollectorTest, ReportsZeroWhenOnlyIdleTicksElapsed) {
  (void)sampleAt(100, 900);
  EXPECT_EQ(sampleAt(100, 901).value, 0.0);
}

TEST_F(CPUCollectorTest, ReportsAHundredWhenIdleTicksDidNotMove) {
  (void)sampleAt(100, 900);
  EXPECT_EQ(sampleAt(107, 900).value, 100.0);
}

TEST_F(CPUCollectorTest, WaitsOnceWhenActiveTicksWentBackwards) {
  (void)sampleAt(100, 900);
  EXPECT_EQ(sampleAt(99, 1000), noDelta);
  EXPECT_EQ(sampleAt(100, 1003).value, 25.0);
}

// Linux's idle and iowait counters are known to step back: proc(5).
TEST_F(CPUCollectorTest, WaitsOnceWhenIdleTicksWentBackwards) {
  (void)sampleAt(100, 900);
  EXPECT_EQ(sampleAt(200, 899), noDelta);
  EXPECT_EQ(sampleAt(201, 902).value, 25.0);
}

TEST_F(CPUCollectorTest, WaitsWhenTheElapsedTicksOverflow) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  (void)sampleAt(0, 0);
  EXPECT_EQ(sampleAt(most, most), noDelta);
}

TEST_F(CPUCollectorTest, IsAFirstReadingAgainAfterAReset) {
  (void)sampleAt(100, 900);
  (void)sampleAt(110, 990);
  collector_.reset();
  EXPECT_EQ(sampleAt(120, 1080), firstReading);
}

TEST_F(CPUCollectorTest, ReportsAFailureInTheWordsOfTheSource) {
  counters_.fail(MachTicks::failure(5));
  EXPECT_EQ(collector_.sample(), MetricSample::unavailable("Mach host_statistics: 5"));
}

TEST_F(CPUCollectorTest, KeepsItsBaseOverAFailure) {
  (void)sampleAt(100, 900);
  counters_.fail(MachTicks::failure(-308));
  EXPECT_EQ(collector_.sample().source, "Mach host_statistics: -308");
  EXPECT_EQ(sampleAt(150, 950).value, 50.0);
}

TEST_F(CPUCollectorTest, IsAFirstReadingAfterAFailureWithoutABase) {
  counters_.fail(MachTicks::failure(5));
  (void)collector_.sample();
  EXPECT_EQ(sampleAt(100, 900), firstReading);
}

TEST(CPUCollector, TakesItsTextsFromTheSource) {
  test::VirtualTime time;
  test::FakeTickCounters counters({"Fonte", "Sem delta"});
  CPUCollector collector(counters, time);
  EXPECT_EQ(collector.sample(), MetricSample::waiting("Fonte"));
  EXPECT_EQ(collector.sample(), MetricSample::waiting("Sem delta"));
}

}  // namespace
}  // namespace vantora
