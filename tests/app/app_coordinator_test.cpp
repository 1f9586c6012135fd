// SPDX-License-Identifier: MIT
#include "app/app_coordinator.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/app_world.hpp"

namespace vantora::test {
namespace {

AppConfiguration withQuotas() {
  AppConfiguration configuration =
      showing({{MetricID::cpuUsage, MetricID::none},
               {MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset},
               {MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent}});
  configuration.codexSettings = CodexQuotaSettings();
  configuration.codexSettings->enabled = true;
  configuration.claudeSettings = ClaudeQuotaSettings();
  configuration.claudeSettings->enabled = true;
  return configuration;
}

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

TEST_F(AppCoordinatorTest, ReadsAndDrawsWhatIsAlwaysShownBesideTheUsersModules) {
  alwaysShown = {MetricID::cpuUsage, MetricID::batteryPercent};
  start(showing({{MetricID::batteryPercent, MetricID::none}}));
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_THAT(lastText(), testing::HasSubstr("CPU · uso total: 30%"));
  ASSERT_EQ(coordinator->shown().modules.size(), 2U);
  EXPECT_EQ(coordinator->model().configuration().modules.size(), 1U);
  change([](AppConfiguration& configuration) { configuration.modules.clear(); });
  EXPECT_EQ(coordinator->shown().demand(), alwaysShown);
  setUsage(31);
  time.advance(Seconds{1});
  EXPECT_THAT(lastText(), testing::HasSubstr("CPU · uso total: 31%"));
}

TEST_F(AppCoordinatorTest, AsksAQuotaThatIsAlwaysShown) {
  alwaysShown = {MetricID::codexWeeklyPercent};
  AppConfiguration configuration = withQuotas();
  configuration.modules.clear();
  start(configuration);
  EXPECT_EQ(coordinator->snapshot().codex.status, CodexQuotaStatus::connecting);
}

TEST_F(AppCoordinatorTest, ReportsEverySamplingRoundEvenWhenNothingIsDrawn) {
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

TEST_F(AppCoordinatorTest, IsNotWokenForATickThatChangesNoText) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  time.advance(Seconds{1});
  const int before = coordinator->samplingRounds();
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_EQ(coordinator->samplingRounds(), before);
  setUsage(31);
  time.advance(Seconds{1});
  EXPECT_EQ(coordinator->samplingRounds(), before + 1);
}

TEST_F(AppCoordinatorTest, TakesEveryTickOverWhileTheWindowShowsThem) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  time.advance(AppCoordinator::reopenGrace);
  ASSERT_TRUE(coordinator->reopen());
  const auto roundsOfOneTick = [this] {
    const int before = coordinator->samplingRounds();
    setUsage(30);
    time.advance(Seconds{1});
    return coordinator->samplingRounds() - before;
  };
  for (int tick = 0; tick < 3; ++tick) {
    EXPECT_EQ(roundsOfOneTick(), 1);
  }
  window->isOpen = false;
  (void)roundsOfOneTick();
  EXPECT_EQ(roundsOfOneTick(), 0);
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

TEST_F(AppCoordinatorTest, KeepsTheQuotaStatesWhenSamplingHandsOverASnapshot) {
  start(withQuotas());
  const auto before = coordinator->snapshot().codex;
  EXPECT_EQ(before.status, CodexQuotaStatus::connecting);
  time.advance(Seconds{2});
  EXPECT_EQ(coordinator->snapshot().codex, before);
  EXPECT_EQ(coordinator->snapshot().claude.status, ClaudeQuotaStatus::connecting);
}

TEST_F(AppCoordinatorTest, ReportsWhatItShowsWhyAReadingIsMissingAndWhenItAsksAgain) {
  start(withQuotas());
  const AgentReport before = coordinator->report();
  EXPECT_EQ(before.codex.status, "connecting");
  EXPECT_EQ(before.codex.nextQuery, std::nullopt) << "it is asking";
  clients.codex[0]->completion(quota_result::NeedsAuthentication());
  clients.claude[0]->completion(quota_result::Failure{"O processo terminou."});
  setUsage(30);
  time.advance(Seconds{1});
  const AgentReport report = coordinator->report();
  EXPECT_EQ(report.shown, "30% | -- LOGIN | -- ERRO");
  ASSERT_EQ(report.readings.size(), 1U) << "quotas are no readings";
  EXPECT_EQ(report.readings[0].metric, MetricID::cpuUsage);
  EXPECT_EQ(report.readings[0].quality, Quality::valid);
  EXPECT_EQ(report.readings[0].text, "30%");
  EXPECT_EQ(report.codex.status, "needsAuthentication");
  EXPECT_THAT(report.codex.message, testing::HasSubstr("precisa de autenticação"));
  EXPECT_EQ(report.claude.status, "error");
  EXPECT_THAT(report.claude.message, testing::StartsWith("O processo terminou."));
  ASSERT_TRUE(report.claude.nextQuery);
  EXPECT_GT(*report.claude.nextQuery, time.now() + std::chrono::seconds(170));
  EXPECT_EQ(report.running, Seconds{1});
}

TEST_F(AppCoordinatorTest, DrawsAQuotaStateThatChangesAText) {
  start(withQuotas());
  ASSERT_EQ(clients.codex.size(), 1U);
  ASSERT_EQ(clients.claude.size(), 1U);
  EXPECT_EQ(clients.codex[0]->starts, 1);
  clients.codex[0]->completion(quota_result::NeedsAuthentication());
  EXPECT_THAT(lastText(), testing::HasSubstr("Codex · tempo até renovar: LOGIN"));
  clients.claude[0]->completion(quota_result::NeedsAuthentication());
  EXPECT_THAT(lastText(), testing::HasSubstr("Claude · janela de 5 horas (%): LOGIN"));
}

TEST_F(AppCoordinatorTest, OpensTheLoginPageInTheBrowser) {
  start(withQuotas());
  clients.codex[0]->completion(quota_result::NeedsAuthentication());
  coordinator->model().onQuotaConnect();
  ASSERT_EQ(clients.codex.size(), 2U);
  EXPECT_EQ(clients.codex[1]->mode, CodexClientMode::login);
  clients.codex[1]->onLoginURL("https://auth.openai.com/x");
  EXPECT_THAT(urlOpener.opened, testing::ElementsAre("https://auth.openai.com/x"));
}

TEST_F(AppCoordinatorTest, PassesTheWindowsIntentsToTheProviders) {
  start(withQuotas());
  clients.codex[0]->completion(quota_result::Failure{"x"});
  clients.claude[0]->completion(quota_result::Failure{"x"});
  time.advance(Seconds{30});
  coordinator->model().onQuotaRefresh();
  coordinator->model().onClaudeRefresh();
  EXPECT_EQ(clients.codex.size(), 2U);
  EXPECT_EQ(clients.claude.size(), 2U);
  coordinator->model().onCodexExecutableChange();
  EXPECT_EQ(clients.codex[1]->cancels, 1);
  EXPECT_EQ(clients.codex.size(), 3U);
}

TEST_F(AppCoordinatorTest, ConfiguresTheProvidersOnEveryChange) {
  start(withQuotas());
  change([](auto& configuration) { configuration.codexSettings->enabled = false; });
  EXPECT_EQ(coordinator->snapshot().codex.status, CodexQuotaStatus::disabled);
  EXPECT_EQ(clients.codex[0]->cancels, 1);
  change([](auto& configuration) { configuration.paused = true; });
  EXPECT_EQ(coordinator->snapshot().claude.status, ClaudeQuotaStatus::disabled);
}

TEST_F(AppCoordinatorTest, ReadsTheBatteryWhenThePowerSourceChanges) {
  start(showing({{MetricID::batteryPercent, MetricID::none}}));
  const int before = battery->reads;
  power.onPowerSourceChange();
  time.runPosted();
  EXPECT_EQ(battery->reads, before + 1);
}

TEST_F(AppCoordinatorTest, LooksAtADueBatteryWhereNoTimerDoes) {
  start(showing({{MetricID::batteryPercent, MetricID::none}}));
  const int before = battery->reads;
  power.onBatteryDue();
  time.runPosted();
  EXPECT_EQ(battery->reads, before + 1);
}

TEST_F(AppCoordinatorTest, TakesNoSecondPassForADueBatteryBesideTheTimers) {
  start(showing({{MetricID::cpuUsage, MetricID::batteryPercent}}));
  setUsage(30);
  time.advance(Seconds{1});
  const int before = ticks->reads();
  power.onBatteryDue();
  time.runPosted();
  EXPECT_EQ(ticks->reads(), before);
  EXPECT_EQ(coordinator->snapshot()[MetricID::cpuUsage].quality, Quality::valid);
}

TEST_F(AppCoordinatorTest, StopsBeforeSleepAndStartsAfresh) {
  start(withQuotas());
  const int before = ticks->reads();
  power.onWillSleep(nullptr);
  time.advance(Seconds{10});
  EXPECT_EQ(ticks->reads(), before);
  EXPECT_EQ(coordinator->snapshot().codex.status, CodexQuotaStatus::disabled);
  EXPECT_EQ(clients.claude[0]->cancels, 1);
  power.onDidWake();
  time.runPosted();
  EXPECT_EQ(ticks->reads(), before + 1);
  EXPECT_EQ(coordinator->snapshot()[MetricID::cpuUsage].quality, Quality::waiting);
  EXPECT_EQ(coordinator->snapshot().codex.status, CodexQuotaStatus::connecting);
  EXPECT_EQ(clients.claude.size(), 2U);
}

TEST_F(AppCoordinatorTest, NotesReadingsQueriesSleepAndWake) {
  start(withQuotas());
  events.clear();
  setUsage(30);
  time.advance(Seconds{1});
  power.onWillSleep(nullptr);
  power.onDidWake();
  time.runPosted();
  EXPECT_THAT(events, testing::IsSupersetOf(
                          {"leitura cpuUsage: valid (Mach HOST_CPU_LOAD_INFO)",
                           "o computador vai dormir", "cotas do Codex: connecting → disabled",
                           "o computador acordou", "cotas do Claude: disabled → connecting"}));
  events.clear();
  setUsage(31);
  time.advance(Seconds{1});
  setUsage(32);
  time.advance(Seconds{1});
  // The reading that came back after the wake, and then nothing more.
  EXPECT_EQ(events.size(), 1U);
}

TEST_F(AppCoordinatorTest, HoldsTheSleepUntilSamplingHasStopped) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  auto hold = std::make_shared<int>();
  const std::weak_ptr<int> held = hold;
  power.onWillSleep(std::move(hold));
  EXPECT_FALSE(held.expired());
  time.runPosted();
  EXPECT_TRUE(held.expired());
}

TEST_F(AppCoordinatorTest, OpensTheSettingsAtAClickWithTheReadingsOfTheMoment) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  setUsage(30);
  time.advance(Seconds{1});
  loginItem.current = LoginItemStatus::enabled;
  EXPECT_EQ(coordinator->model().snapshot(), MetricSnapshot());
  item_.actions.openSettings("token");
  EXPECT_THAT(window->tokens, testing::ElementsAre("token"));
  EXPECT_EQ(coordinator->model().snapshot(), coordinator->snapshot());
  time.runPosted();
  EXPECT_EQ(coordinator->model().loginItemStatus(), LoginItemStatus::enabled);
}

TEST_F(AppCoordinatorTest, CopiesReadingsToTheModelOnlyWhileTheWindowIsVisible) {
  start(withQuotas());
  setUsage(30);
  time.advance(Seconds{1});
  EXPECT_EQ(coordinator->model().snapshot(), MetricSnapshot());
  window->isOpen = true;
  setUsage(31);
  time.advance(Seconds{1});
  EXPECT_EQ(coordinator->model().snapshot(), coordinator->snapshot());
  clients.codex[0]->completion(quota_result::NeedsAuthentication());
  EXPECT_EQ(coordinator->model().snapshot().codex.status, CodexQuotaStatus::needsAuthentication);
  window->isOpen = false;
  clients.claude[0]->completion(quota_result::NeedsAuthentication());
  EXPECT_NE(coordinator->model().snapshot(), coordinator->snapshot());
}

TEST_F(AppCoordinatorTest, GivesTheWindowThePictureThatTheItemShows) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  EXPECT_EQ(window->previews, item_.shown);
}

TEST_F(AppCoordinatorTest, PausesAndResumesFromTheMenu) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  EXPECT_FALSE(item_.actions.isPaused());
  item_.actions.togglePause();
  EXPECT_TRUE(item_.actions.isPaused());
  time.runPosted();
  EXPECT_EQ(coordinator->snapshot()[MetricID::cpuUsage].quality, Quality::stale);
  item_.actions.togglePause();
  EXPECT_FALSE(item_.actions.isPaused());
}

TEST_F(AppCoordinatorTest, SavesAPauseAfterTheUsualDelay) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  item_.actions.togglePause();
  time.advance(Seconds{0.4});
  EXPECT_TRUE(ConfigurationStore(folder.path()).load().configuration.paused);
}

TEST_F(AppCoordinatorTest, QuitsFromTheMenu) {
  start(showing({}));
  item_.actions.quit();
  EXPECT_EQ(quits, 1);
}

TEST_F(AppCoordinatorTest, IgnoresAReopeningWithinThreeSecondsOfItsStart) {
  start(showing({}));
  time.advance(Seconds{2.999});
  EXPECT_FALSE(coordinator->reopen());
  EXPECT_TRUE(window->tokens.empty());
  time.advance(Seconds{0.001});
  EXPECT_TRUE(coordinator->reopen("token"));
  EXPECT_THAT(window->tokens, testing::ElementsAre("token"));
}

TEST_F(AppCoordinatorTest, EndsItsChildrenAndItsListeningAtTermination) {
  start(withQuotas());
  coordinator->model().setConfiguration(showing({}));
  coordinator->model().setConfiguration(withQuotas());
  window->isOpen = true;
  coordinator->terminate();
  EXPECT_EQ(clients.codex.back()->cancels, 1);
  EXPECT_EQ(clients.claude.back()->cancels, 1);
  EXPECT_FALSE(power.onDidWake);
  EXPECT_FALSE(window->isOpen);
}

TEST_F(AppCoordinatorTest, DoesNotFlushASaveThatWaitsAtTermination) {
  start(showing({{MetricID::cpuUsage, MetricID::none}}));
  item_.actions.togglePause();
  coordinator->terminate();
  coordinator.reset();
  time.advance(Seconds{5});
  EXPECT_FALSE(ConfigurationStore(folder.path()).load().configuration.paused);
}

TEST_F(AppCoordinatorTest, WorksWithoutAWindow) {
  hasWindow = false;
  start(withQuotas());
  EXPECT_FALSE(item_.actions.openSettings);
  time.advance(Seconds{3});
  EXPECT_TRUE(coordinator->reopen());
  coordinator->terminate();
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
