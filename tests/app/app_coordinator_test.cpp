// SPDX-License-Identifier: MIT
#include "app/app_coordinator.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/configuration_codec.hpp"
#include "settings/fakes.hpp"
#include "settings/temporary_folder.hpp"
#include "support/fake_network_source.hpp"
#include "support/fake_power_sources.hpp"
#include "support/fake_status_item.hpp"
#include "support/fake_text_engine.hpp"
#include "support/fake_tick_counters.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {
namespace {

AppConfiguration showing(std::initializer_list<std::pair<MetricID, MetricID>> modules) {
  AppConfiguration configuration;
  configuration.modules.clear();
  for (const auto& [top, bottom] : modules) {
    configuration.modules.emplace_back();
    configuration.modules.back().top = top;
    configuration.modules.back().bottom = bottom;
  }
  configuration.intervalSeconds = 1;
  return configuration;
}

class AppCoordinatorTest : public testing::Test {
 protected:
  void start(const AppConfiguration& configuration) {
    std::filesystem::create_directories(folder_ / "Vantora");
    writeBytes(folder_ / "Vantora/configuration.json", *ConfigurationCodec::encode(configuration));
    auto ticks = std::make_unique<FakeTickCounters>();
    ticks_ = ticks.get();
    SamplingSources sources{std::move(ticks), std::make_unique<FakeNetworkSource>(),
                            std::make_unique<FakeBatterySource>(),
                            std::make_unique<FakeSensorSource>()};
    coordinator_ = AppCoordinator::create(
        {time_, item_, engine_,
         std::make_unique<SettingsModel>(*main_, ConfigurationStore(folder_.path()), loginItem_,
                                         defaults_),
         SamplingCoordinator::create(*sampling_, *main_, time_, std::move(sources))});
    coordinator_->launch();
    time_.runPosted();
  }

  void change(const std::function<void(AppConfiguration&)>& edit) {
    AppConfiguration configuration = coordinator_->model().configuration();
    edit(configuration);
    coordinator_->model().setConfiguration(std::move(configuration));
    time_.runPosted();
  }

  // Usage between the last reading and the next.
  void setUsage(std::uint64_t percent) {
    active_ += percent;
    idle_ += 100 - percent;
    ticks_->set(active_, idle_);
  }

  [[nodiscard]] std::string lastText() const { return item_.shown.back().accessibilityText; }

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> main_ = time_.makeQueue();
  std::unique_ptr<VirtualQueue> sampling_ = time_.makeQueue();
  TemporaryFolder folder_;
  FakeLoginItem loginItem_;
  FakeUserDefaults defaults_;
  FakeStatusItem item_;
  FakeTextEngine engine_;
  FakeTickCounters* ticks_ = nullptr;
  std::uint64_t active_ = 1000;
  std::uint64_t idle_ = 9000;
  std::shared_ptr<AppCoordinator> coordinator_;
};

TEST_F(AppCoordinatorTest, DrawsOnceBeforeAnythingWasSampled) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  ASSERT_EQ(item_.shown.size(), 1U);
  EXPECT_THAT(lastText(), testing::HasSubstr("CPU · uso total: —"));
}

TEST_F(AppCoordinatorTest, DrawsAReadingWhenItsTextChanged) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  time_.advance(Seconds{1});
  ASSERT_EQ(item_.shown.size(), 2U);
  EXPECT_THAT(lastText(), testing::HasSubstr("CPU · uso total: 30%"));
}

TEST_F(AppCoordinatorTest, DrawsTwoRoundsOfTheSameTextsOnce) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  time_.advance(Seconds{1});
  setUsage(30);
  time_.advance(Seconds{1});
  EXPECT_EQ(item_.shown.size(), 2U);
  setUsage(31);
  time_.advance(Seconds{1});
  EXPECT_EQ(item_.shown.size(), 3U);
}

TEST_F(AppCoordinatorTest, TellsOfEverySamplingRoundEvenWhenNothingIsDrawn) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  int rounds = 0;
  coordinator_->onSampled = [&] { ++rounds; };
  for (int round = 0; round < 3; ++round) {
    setUsage(30);
    time_.advance(Seconds{1});
  }
  EXPECT_EQ(rounds, 3);
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
  const int before = ticks_->reads();
  change([](auto& configuration) { configuration.modules[0].width = 80; });
  change([](auto& configuration) { configuration.gap = 9; });
  change([](auto& configuration) { configuration.modules[0].fontTop = 12; });
  change([](auto& configuration) {
    configuration.codexSettings = CodexQuotaSettings();
    configuration.codexSettings->showUsed = true;
  });
  EXPECT_EQ(ticks_->reads(), before);
}

TEST_F(AppCoordinatorTest, ReconfiguresSamplingWhenWhatItDependsOnChanges) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  int expected = ticks_->reads();
  // A reconfiguration takes a pass at once.
  change([](auto& configuration) { configuration.intervalSeconds = 2; });
  EXPECT_EQ(ticks_->reads(), ++expected);
  change([](auto& configuration) { configuration.networkInterface = "en0"; });
  EXPECT_EQ(ticks_->reads(), ++expected);
  change([](auto& configuration) { configuration.modules[0].bottom = MetricID::upload; });
  EXPECT_EQ(ticks_->reads(), ++expected);
  change([](auto& configuration) { configuration.paused = true; });
  EXPECT_EQ(ticks_->reads(), expected);
  time_.advance(Seconds{10});
  EXPECT_EQ(ticks_->reads(), expected);
  change([](auto& configuration) { configuration.paused = false; });
  EXPECT_EQ(ticks_->reads(), ++expected);
}

TEST_F(AppCoordinatorTest, ShowsTheMarkWhenNoModuleIsVisible) {
  start(showing({}));
  EXPECT_EQ(lastText(), "Vantora: sem módulos ativos. Clique para configurar.");
  EXPECT_EQ(item_.shown.back().width, 20);
}

TEST_F(AppCoordinatorTest, FallsSilentWhenItIsGone) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  coordinator_.reset();
  time_.advance(Seconds{5});
  EXPECT_EQ(item_.shown.size(), 1U);
}

}  // namespace
}  // namespace vantora::test
