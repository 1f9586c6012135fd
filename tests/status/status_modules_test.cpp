// SPDX-License-Identifier: MIT
#include "status/status_modules.hpp"

#include <gtest/gtest.h>

#include <string>

#include "support/example_time.hpp"

namespace vantora {
namespace {

using test::exampleTime;

struct StatusModulesTest : ::testing::Test {
  StatusModulesTest() {
    configuration.modules.clear();
    set(MetricID::cpuUsage, 17);
    set(MetricID::cpuTemperature, 41.4);
    set(MetricID::upload, 40'000);
  }

  void set(MetricID metric, double value) {
    snapshot.samples.set(metric, MetricSample::valid(value, "fonte", exampleTime));
  }

  ModuleConfiguration& add(MetricID top, MetricID bottom) {
    ModuleConfiguration module;
    module.top = top;
    module.bottom = bottom;
    return configuration.modules.emplace_back(module);
  }

  std::vector<StatusModule> read(WallTime instant = exampleTime) const {
    std::vector<StatusModule> modules;
    StatusModules::read(configuration, snapshot, instant, modules);
    return modules;
  }

  std::string signature(WallTime instant = exampleTime) const {
    std::string text = "what was signed before";
    StatusModules::sign(read(instant), text);
    return text;
  }

  AppConfiguration configuration;
  MetricSnapshot snapshot;
};

TEST_F(StatusModulesTest, ReadsTheVisibleModulesInOrder) {
  add(MetricID::fan1RPM, MetricID::none);
  add(MetricID::cpuUsage, MetricID::none);
  add(MetricID::upload, MetricID::none).enabled = false;
  add(MetricID::cpuTemperature, MetricID::batteryTime);
  const auto modules = read();
  ASSERT_EQ(modules.size(), 2U);
  EXPECT_EQ(modules[0].index, 1U);
  EXPECT_EQ(modules[0].id, configuration.modules[1].id);
  EXPECT_EQ(modules[0].top.text, "17%");
  EXPECT_EQ(modules[0].bottom.text, "");
  EXPECT_EQ(modules[1].index, 3U);
  EXPECT_EQ(modules[1].top.metric, MetricID::cpuTemperature);
  EXPECT_EQ(modules[1].bottom.text, "—");
}

TEST_F(StatusModulesTest, KeepsNothingOfWhatTheVectorHeld) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  add(MetricID::upload, MetricID::none);
  std::vector<StatusModule> modules = read();
  modules[0].x = 5;
  modules[0].width = 50;
  modules[0].top.font.pointSize = 30;
  configuration.modules.erase(configuration.modules.begin());
  StatusModules::read(configuration, snapshot, exampleTime, modules);
  EXPECT_EQ(modules, read());
}

TEST_F(StatusModulesTest, SaysWhetherALineHasAReading) {
  add(MetricID::cpuUsage, MetricID::none);
  add(MetricID::batteryPercent, MetricID::batteryTime);
  add(MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset);
  snapshot.batteryOnAC = true;
  const auto modules = read();
  ASSERT_EQ(modules.size(), 3U);
  EXPECT_TRUE(modules[0].top.hasReading);
  EXPECT_FALSE(modules[0].bottom.hasReading) << "an empty line";
  EXPECT_FALSE(modules[1].top.hasReading) << "a dash";
  EXPECT_TRUE(modules[1].bottom.hasReading) << "AC";
  EXPECT_FALSE(modules[2].top.hasReading) << "the quotas' dash";
  EXPECT_TRUE(modules[2].bottom.hasReading) << "OFF";
}

TEST_F(StatusModulesTest, HasNoReadingWhereBothLinesAreDashes) {
  add(MetricID::batteryPercent, MetricID::batteryTime);
  EXPECT_FALSE(read().front().hasReading());
  set(MetricID::batteryTime, 95);
  EXPECT_TRUE(read().front().hasReading());
}

TEST_F(StatusModulesTest, JoinsTheLinesThatAreNotEmpty) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  add(MetricID::cpuUsage, MetricID::none);
  add(MetricID::none, MetricID::upload);
  const auto modules = read();
  EXPECT_EQ(StatusModules::joinedLines(modules[0]), "17% 41°C");
  EXPECT_EQ(StatusModules::joinedLines(modules[1]), "17%");
  EXPECT_EQ(StatusModules::joinedLines(modules[2]), "0,04M");
}

TEST_F(StatusModulesTest, SignsEveryVisibleModuleWithItsIdentityAndTexts) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature).id =
      *UUID::parse("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
  add(MetricID::fan1RPM, MetricID::none);
  add(MetricID::upload, MetricID::none).id = UUID();
  EXPECT_EQ(signature(),
            "E621E1F8-C36C-495A-93FC-0C247A3E6E5F:17%|41°C;"
            "00000000-0000-0000-0000-000000000000:0,04M|");
}

TEST_F(StatusModulesTest, SignsNothingWhenNothingIsVisible) {
  EXPECT_EQ(signature(), "");
  add(MetricID::fan1RPM, MetricID::none);
  EXPECT_EQ(signature(), "");
}

TEST_F(StatusModulesTest, KeepsItsSignatureWhileTheTextsStay) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  const std::string before = signature();
  set(MetricID::cpuUsage, 17.4);
  set(MetricID::batteryPercent, 50);
  snapshot.claude.message = "Outra mensagem.";
  EXPECT_EQ(signature(), before);
  set(MetricID::cpuUsage, 17.5);
  EXPECT_NE(signature(), before);
}

TEST_F(StatusModulesTest, SignsNoLayout) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  const std::string before = signature();
  module.width = 100;
  module.fontTop = 12;
  module.alignment = Alignment::right;
  configuration.gap = 20;
  EXPECT_EQ(signature(), before);
}

TEST_F(StatusModulesTest, SignsTheInstantsTexts) {
  add(MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset);
  snapshot.codex.status = CodexQuotaStatus::ready;
  snapshot.codex.usedPercent = 40;
  snapshot.codex.lastSuccess = exampleTime;
  snapshot.codex.resetAt = exampleTime + std::chrono::minutes{90};
  const std::string before = signature();
  EXPECT_TRUE(before.ends_with(":60%|1h30m")) << before;
  EXPECT_NE(signature(exampleTime + std::chrono::minutes{1}), before);
}

}  // namespace
}  // namespace vantora
