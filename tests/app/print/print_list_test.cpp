// SPDX-License-Identifier: MIT
#include "app/print/print_list.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/cells.hpp"
#include "model/words.hpp"
#include "status/status_modules.hpp"
#include "support/example_time.hpp"

namespace vantora {
namespace {

using PrintFormatter::listLines;
using testing::ElementsAre;

using test::exampleTime;

struct ListScene {
  ListScene() { configuration.modules.clear(); }

  void add(MetricID top, MetricID bottom = MetricID::none) {
    ModuleConfiguration module;
    module.top = top;
    module.bottom = bottom;
    module.hideInactiveFans = false;
    configuration.modules.push_back(module);
  }
  void set(MetricID metric, MetricSample sample) {
    snapshot.samples.set(metric, std::move(sample));
  }
  [[nodiscard]] PrintReport report() {
    StatusModules::read(configuration, snapshot, exampleTime, presentation.modules);
    return {configuration, snapshot, presentation, notice};
  }
  [[nodiscard]] std::string reason(MetricID metric) {
    return PrintFormatter::reason(metric, report());
  }

  AppConfiguration configuration;
  MetricSnapshot snapshot;
  StatusPresentation presentation;
  std::optional<std::string> notice;
};

TEST(PrintList, HasALineForEachMetricInTheModulesOrder) {
  ListScene scene;
  scene.add(MetricID::upload, MetricID::none);
  scene.add(MetricID::cpuUsage, MetricID::cpuTemperature);
  scene.set(MetricID::upload, MetricSample::valid(125'400'000, "en0", exampleTime));
  scene.set(MetricID::cpuUsage, MetricSample::valid(7, "Linux /proc/stat", exampleTime));
  scene.set(MetricID::cpuTemperature, MetricSample::unavailable("nenhum sensor"));
  const std::string title(Words::cpuTemperatureTitle);
  const std::string gap(cellCount(title) - cellCount("Rede · upload"), ' ');
  const std::string otherGap(cellCount(title) - cellCount("CPU · uso total"), ' ');
  EXPECT_THAT(listLines(scene.report()),
              ElementsAre("Rede · upload" + gap + "  125M", "CPU · uso total" + otherGap + "    7%",
                          title + "     —  nenhum sensor"));
}

TEST(PrintList, ListsAMetricOnceHoweverOftenItIsShown) {
  ListScene scene;
  scene.add(MetricID::cpuUsage, MetricID::cpuUsage);
  scene.add(MetricID::cpuUsage);
  scene.set(MetricID::cpuUsage, MetricSample::valid(7, "", exampleTime));
  EXPECT_THAT(listLines(scene.report()), ElementsAre("CPU · uso total  7%"));
}

TEST(PrintList, ShowsTheMarkWhereNoModuleIsVisible) {
  ListScene scene;
  EXPECT_THAT(listLines(scene.report()), ElementsAre("VA"));
  EXPECT_THAT(listLines(scene.report(), 1), ElementsAre("V"));
}

TEST(PrintList, GivesUpReasonsBeforeTitlesAndTitlesBeforeValues) {
  ListScene scene;
  scene.add(MetricID::cpuUsage);
  scene.set(MetricID::cpuUsage, MetricSample::unavailable("falta"));
  EXPECT_THAT(listLines(scene.report(), 25), ElementsAre("CPU · uso total  —  falta"));
  EXPECT_THAT(listLines(scene.report(), 24), ElementsAre("CPU · uso total  —  fal…"));
  EXPECT_THAT(listLines(scene.report(), 20), ElementsAre("CPU · uso total  —"));
  EXPECT_THAT(listLines(scene.report(), 18), ElementsAre("CPU · uso total  —"));
  EXPECT_THAT(listLines(scene.report(), 10), ElementsAre("CPU · …  —"));
}

TEST(PrintList, IsNeverWiderThanTheTerminal) {
  ListScene scene;
  scene.add(MetricID::cpuUsage, MetricID::batteryChargeWatts);
  scene.set(MetricID::cpuUsage, MetricSample::unavailable("falta"));
  for (std::size_t columns = 0; columns < 90; ++columns) {
    for (const std::string& line : listLines(scene.report(), columns)) {
      EXPECT_LE(cellCount(line), columns);
    }
  }
}

TEST(PrintList, LetsNoOthersTextSteerTheTerminal) {
  ListScene scene;
  scene.add(MetricID::cpuUsage);
  scene.set(MetricID::cpuUsage, MetricSample::unavailable("a\x1b[2Jb\nc\x7f"));
  EXPECT_THAT(listLines(scene.report()), ElementsAre("CPU · uso total  —  a?[2Jb?c?"));
}

TEST(PrintList, GivesTheReasonOfEachKindOfMissingReading) {
  ListScene scene;
  EXPECT_EQ(scene.reason(MetricID::cpuUsage), "Aguardando a primeira leitura");
  scene.set(MetricID::cpuUsage, MetricSample::waiting("Linux /proc/stat · aguardando"));
  EXPECT_EQ(scene.reason(MetricID::cpuUsage), "Linux /proc/stat · aguardando");
  scene.set(MetricID::cpuUsage, MetricSample::valid(7, "Linux /proc/stat", exampleTime));
  EXPECT_EQ(scene.reason(MetricID::cpuUsage), "");
  EXPECT_EQ(scene.reason(MetricID::inputWatts), Words::sourceNotValidated);
}

TEST(PrintList, SaysThatThePauseIsTheReason) {
  ListScene scene;
  scene.configuration.paused = true;
  EXPECT_EQ(scene.reason(MetricID::cpuUsage), "Coleta pausada");
  EXPECT_EQ(scene.reason(MetricID::inputWatts), Words::sourceNotValidated);
}

TEST(PrintList, GivesTheQuotasMessagesUnlessTheyAreReady) {
  ListScene scene;
  scene.snapshot.codex.message = "Mensagem do Codex.";
  scene.snapshot.claude.message = "Mensagem do Claude.";
  EXPECT_EQ(scene.reason(MetricID::codexWeeklyReset), "Mensagem do Codex.");
  EXPECT_EQ(scene.reason(MetricID::claudeSessionPercent), "Mensagem do Claude.");
  scene.snapshot.codex.status = CodexQuotaStatus::ready;
  scene.snapshot.claude.status = ClaudeQuotaStatus::ready;
  EXPECT_EQ(scene.reason(MetricID::codexWeeklyReset), "");
  EXPECT_EQ(scene.reason(MetricID::claudeSessionPercent), "");
}

}  // namespace
}  // namespace vantora
