// SPDX-License-Identifier: MIT
#include "app/app_coordinator.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/app_world.hpp"
#include "support/fake_status_item.hpp"

namespace vantora::test {
namespace {

class AppCoordinatorTest : public testing::Test, protected AppWorld {
 protected:
  void start(const AppConfiguration& configuration) {
    make(configuration, item_);
    coordinator->launch();
    time.runPosted();
  }
  [[nodiscard]] std::string lastText() const { return item_.shown.back().accessibilityText; }

  FakeStatusItem item_;
};

TEST_F(AppCoordinatorTest, DrawsOnceBeforeAnythingWasSampled) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  ASSERT_EQ(item_.shown.size(), 1U);
  EXPECT_THAT(lastText(), testing::HasSubstr("CPU · uso total: —"));
}

TEST_F(AppCoordinatorTest, DrawsAReadingWhenItsTextChanged) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  time.advance(Seconds{1});
  ASSERT_EQ(item_.shown.size(), 2U);
  EXPECT_THAT(lastText(), testing::HasSubstr("CPU · uso total: 30%"));
}

TEST_F(AppCoordinatorTest, DrawsTwoRoundsOfTheSameTextsOnce) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  time.advance(Seconds{1});
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_EQ(item_.shown.size(), 2U);
  setUsage(31);
  time.advance(Seconds{1});
  EXPECT_EQ(item_.shown.size(), 3U);
}

TEST_F(AppCoordinatorTest, TellsOfEverySamplingRoundEvenWhenNothingIsDrawn) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  int rounds = 0;
  coordinator->onUpdate = [&] { ++rounds; };
  for (int round = 0; round < 3; ++round) {
    setUsage(30);
    time.advance(Seconds{1});
  }
  EXPECT_EQ(rounds, 3);
  EXPECT_EQ(coordinator->samplingRounds(), 4);
  EXPECT_EQ(item_.shown.size(), 2U);
}

TEST_F(AppCoordinatorTest, AlwaysDrawsAChangedConfiguration) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  const std::size_t before = item_.shown.size();
  change([](auto& configuration) { configuration.networkInterface = "en7"; });
  EXPECT_GT(item_.shown.size(), before);
}

TEST_F(AppCoordinatorTest, LeavesSamplingAloneWhenOnlyTheLayoutChanges) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  const int before = ticks->reads();
  change([](auto& configuration) { configuration.modules[0].width = 80; });
  change([](auto& configuration) { configuration.gap = 9; });
  change([](auto& configuration) { configuration.modules[0].fontTop = 12; });
  change([](auto& configuration) {
    configuration.codexSettings = CodexQuotaSettings();
    configuration.codexSettings->showUsed = true;
  });
  EXPECT_EQ(ticks->reads(), before);
}

TEST_F(AppCoordinatorTest, ReconfiguresSamplingWhenWhatItDependsOnChanges) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  int expected = ticks->reads();
  // A reconfiguration takes a pass at once.
  change([](auto& configuration) { configuration.intervalSeconds = 2; });
  EXPECT_EQ(ticks->reads(), ++expected);
  change([](auto& configuration) { configuration.networkInterface = "en0"; });
  EXPECT_EQ(ticks->reads(), ++expected);
  change([](auto& configuration) { configuration.modules[0].bottom = MetricID::upload; });
  EXPECT_EQ(ticks->reads(), ++expected);
  change([](auto& configuration) { configuration.paused = true; });
  EXPECT_EQ(ticks->reads(), expected);
  time.advance(Seconds{10});
  EXPECT_EQ(ticks->reads(), expected);
  change([](auto& configuration) { configuration.paused = false; });
  EXPECT_EQ(ticks->reads(), ++expected);
}

TEST_F(AppCoordinatorTest, ShowsTheMarkWhenNoModuleIsVisible) {
  start(showing({}));
  EXPECT_EQ(lastText(), "Vantora: sem módulos ativos. Clique para configurar.");
  EXPECT_EQ(item_.shown.back().width, 20);
}

TEST_F(AppCoordinatorTest, FallsSilentWhenItIsGone) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  coordinator.reset();
  time.advance(Seconds{5});
  EXPECT_EQ(item_.shown.size(), 1U);
}

}  // namespace
}  // namespace vantora::test
