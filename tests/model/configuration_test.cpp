// SPDX-License-Identifier: MIT
#include "model/configuration.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace vantora {
namespace {

bool isAccepted(const std::function<void(AppConfiguration&)>& change) {
  AppConfiguration configuration;
  change(configuration);
  const auto validated = configuration.validated();
  EXPECT_TRUE(!validated || *validated == configuration);
  return validated.has_value();
}

TEST(AppConfiguration, HasTheDefaultsThatPeopleStartWith) {
  const AppConfiguration configuration;
  EXPECT_EQ(configuration.schemaVersion, 1);
  EXPECT_EQ(configuration.intervalSeconds, 2);
  EXPECT_EQ(configuration.gap, 4);
  EXPECT_EQ(configuration.horizontalPadding, 3);
  EXPECT_EQ(configuration.verticalPadding, 0);
  EXPECT_EQ(configuration.lineGap, 0);
  EXPECT_EQ(configuration.networkInterface, std::nullopt);
  EXPECT_FALSE(configuration.paused);
  EXPECT_EQ(configuration.codexSettings, std::nullopt);
  EXPECT_EQ(configuration.claudeSettings, std::nullopt);
  ASSERT_EQ(configuration.modules.size(), 3U);
  const std::array<std::tuple<MetricID, MetricID, double>, 3> expected{{
      {MetricID::batteryPercent, MetricID::batteryTime, 34},
      {MetricID::upload, MetricID::download, 39},
      {MetricID::cpuUsage, MetricID::cpuTemperature, 34},
  }};
  for (std::size_t index = 0; index < expected.size(); ++index) {
    const ModuleConfiguration& module = configuration.modules[index];
    EXPECT_EQ(std::tuple(module.top, module.bottom, module.width), expected[index]);
    EXPECT_TRUE(module.enabled);
    EXPECT_EQ(module.widthMode, WidthMode::fixed);
    EXPECT_EQ(module.fontTop, 9);
    EXPECT_EQ(module.fontBottom, 9);
    EXPECT_EQ(module.alignment, Alignment::center);
    EXPECT_EQ(module.gapAfter, std::nullopt);
    EXPECT_EQ(module.hideInactiveFans, std::nullopt);
  }
  EXPECT_TRUE(configuration.validated());
}

TEST(AppConfiguration, GivesItsDefaultModulesFreshIdentities) {
  EXPECT_NE(AppConfiguration().modules[0].id, AppConfiguration().modules[0].id);
}

TEST(AppConfiguration, AcceptsOneAndTwoSeconds) {
  for (const auto& [seconds, expected] :
       {std::pair(0, false), std::pair(1, true), std::pair(2, true), std::pair(3, false)}) {
    EXPECT_EQ(isAccepted([s = seconds](auto& c) { c.intervalSeconds = s; }), expected) << seconds;
  }
}

TEST(AppConfiguration, AcceptsItsOwnSchemaOnly) {
  EXPECT_FALSE(isAccepted([](auto& c) { c.schemaVersion = 0; }));
  EXPECT_FALSE(isAccepted([](auto& c) { c.schemaVersion = 2; }));
}

TEST(AppConfiguration, AcceptsTwentyFourModulesAndNotTwentyFive) {
  EXPECT_TRUE(isAccepted([](auto& c) { c.modules.assign(0, {}); }));
  const auto fill = [](AppConfiguration& c, int count) {
    c.modules.clear();
    for (int index = 0; index < count; ++index) {
      c.modules.emplace_back();
    }
  };
  EXPECT_TRUE(isAccepted([&](auto& c) { fill(c, 24); }));
  EXPECT_FALSE(isAccepted([&](auto& c) { fill(c, 25); }));
}

TEST(AppConfiguration, RefusesTheTwentyFifthModuleAtTheTop) {
  AppConfiguration configuration;
  while (configuration.modules.size() < 24) {
    ModuleConfiguration module;
    const UUID added = module.id;
    EXPECT_TRUE(configuration.insertAtTop(std::move(module)));
    EXPECT_EQ(configuration.modules.front().id, added);
  }
  const auto before = configuration;
  EXPECT_FALSE(configuration.insertAtTop({}));
  EXPECT_EQ(configuration, before);
}

TEST(AppConfiguration, RefusesTwoModulesOfOneIdentity) {
  EXPECT_FALSE(isAccepted([](auto& c) { c.modules[2].id = c.modules[0].id; }));
}

struct NumberCase {
  const char* name;
  double least;
  double most;
  void (*set)(AppConfiguration&, double);
};

class ConfigurationNumbers : public testing::TestWithParam<NumberCase> {};

TEST_P(ConfigurationNumbers, AreAcceptedBetweenTheirBoundsOnly) {
  const NumberCase& number = GetParam();
  const auto accepts = [&](double value) {
    return isAccepted([&](AppConfiguration& c) { number.set(c, value); });
  };
  EXPECT_TRUE(accepts(number.least));
  EXPECT_TRUE(accepts(number.most));
  EXPECT_FALSE(accepts(number.least - 0.01));
  EXPECT_FALSE(accepts(number.most + 0.01));
  EXPECT_FALSE(accepts(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(accepts(std::numeric_limits<double>::infinity()));
}

INSTANTIATE_TEST_SUITE_P(
    All, ConfigurationNumbers,
    testing::Values(
        NumberCase{"gap", 0, 24, [](auto& c, double v) { c.gap = v; }},
        NumberCase{"horizontalPadding", 0, 16, [](auto& c, double v) { c.horizontalPadding = v; }},
        NumberCase{"verticalPadding", 0, 10, [](auto& c, double v) { c.verticalPadding = v; }},
        NumberCase{"lineGap", 0, 8, [](auto& c, double v) { c.lineGap = v; }},
        NumberCase{"width", 16, 160, [](auto& c, double v) { c.modules[1].width = v; }},
        NumberCase{"fontTop", 8, 13, [](auto& c, double v) { c.modules[1].fontTop = v; }},
        NumberCase{"fontBottom", 8, 13, [](auto& c, double v) { c.modules[1].fontBottom = v; }},
        NumberCase{"gapAfter", 0, 24, [](auto& c, double v) { c.modules[1].gapAfter = v; }}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(AppConfiguration, MeasuresTheInterfaceNameInBytes) {
  EXPECT_TRUE(isAccepted([](auto& c) { c.networkInterface = ""; }));
  EXPECT_TRUE(isAccepted([](auto& c) { c.networkInterface = std::string(32, 'e'); }));
  EXPECT_FALSE(isAccepted([](auto& c) { c.networkInterface = std::string(33, 'e'); }));
  std::string sixteenCharacters;
  for (int index = 0; index < 16; ++index) {
    sixteenCharacters += "é";
  }
  EXPECT_TRUE(isAccepted([&](auto& c) { c.networkInterface = sixteenCharacters; }));
  EXPECT_FALSE(isAccepted([&](auto& c) { c.networkInterface = sixteenCharacters + "e"; }));
}

TEST(AppConfiguration, AcceptsFourQuotaIntervals) {
  for (int minutes = -1; minutes <= 11; ++minutes) {
    const bool expected = minutes == 1 || minutes == 3 || minutes == 5 || minutes == 10;
    EXPECT_EQ(isAccepted([&](auto& c) {
                c.codexSettings = CodexQuotaSettings();
                c.codexSettings->intervalMinutes = minutes;
              }),
              expected);
    EXPECT_EQ(isAccepted([&](auto& c) {
                c.claudeSettings = ClaudeQuotaSettings();
                c.claudeSettings->intervalMinutes = minutes;
              }),
              expected);
  }
}

TEST(AppConfiguration, AcceptsALimitIdentifierOfAHundredBytes) {
  const auto accepts = [](std::size_t bytes) {
    return isAccepted([&](auto& c) {
      c.codexSettings = CodexQuotaSettings();
      c.codexSettings->selectedLimitID = std::string(bytes, 'x');
    });
  };
  EXPECT_TRUE(accepts(100));
  EXPECT_FALSE(accepts(101));
}

TEST(AppConfiguration, DemandsWhatItsEnabledModulesShow) {
  AppConfiguration configuration;
  EXPECT_EQ(configuration.demand(),
            (MetricSet{MetricID::batteryPercent, MetricID::batteryTime, MetricID::upload,
                       MetricID::download, MetricID::cpuUsage, MetricID::cpuTemperature}));
  EXPECT_EQ(configuration.families(), (FamilySet{MetricFamily::battery, MetricFamily::network,
                                                 MetricFamily::cpu, MetricFamily::sensors}));
  configuration.modules[1].enabled = false;
  configuration.modules[2].bottom = MetricID::none;
  configuration.modules[0].bottom = MetricID::inputWatts;
  EXPECT_EQ(configuration.demand(),
            (MetricSet{MetricID::batteryPercent, MetricID::inputWatts, MetricID::cpuUsage}));
  EXPECT_EQ(configuration.families(), (FamilySet{MetricFamily::battery, MetricFamily::cpu}));
}

ModuleConfiguration module(MetricID top, MetricID bottom) {
  ModuleConfiguration result;
  result.top = top;
  result.bottom = bottom;
  return result;
}

MetricSnapshot withFans(std::optional<double> first, std::optional<double> second = {}) {
  MetricSnapshot snapshot;
  const auto put = [&](MetricID metric, std::optional<double> value) {
    if (value) {
      snapshot.samples.set(metric, MetricSample::valid(*value, "", WallTime{}));
    }
  };
  put(MetricID::fan1RPM, first);
  put(MetricID::fan2RPM, second);
  return snapshot;
}

TEST(ModuleConfiguration, IsInvisibleWhenDisabledOrEmpty) {
  auto disabled = module(MetricID::cpuUsage, MetricID::none);
  disabled.enabled = false;
  EXPECT_FALSE(disabled.isVisible({}));
  EXPECT_FALSE(module(MetricID::none, MetricID::none).isVisible({}));
  auto shown = module(MetricID::none, MetricID::none);
  shown.hideInactiveFans = false;
  EXPECT_FALSE(shown.isVisible({}));
}

TEST(ModuleConfiguration, IsVisibleWithAnyMetricThatIsNotAFan) {
  EXPECT_TRUE(module(MetricID::cpuUsage, MetricID::none).isVisible({}));
  EXPECT_TRUE(module(MetricID::fan1RPM, MetricID::inputWatts).isVisible({}));
}

TEST(ModuleConfiguration, HidesFansThatStandStill) {
  const auto fan = module(MetricID::fan1RPM, MetricID::none);
  EXPECT_FALSE(fan.isVisible(withFans(0)));
  EXPECT_TRUE(fan.isVisible(withFans(1200)));
  EXPECT_FALSE(fan.isVisible(withFans(std::nullopt)));
}

TEST(ModuleConfiguration, ShowsStandingFansWhenHidingIsOff) {
  auto fan = module(MetricID::fan1RPM, MetricID::none);
  fan.hideInactiveFans = false;
  EXPECT_TRUE(fan.isVisible(withFans(0)));
  EXPECT_TRUE(fan.isVisible({}));
  fan.hideInactiveFans = true;
  EXPECT_FALSE(fan.isVisible(withFans(0)));
}

TEST(ModuleConfiguration, ShowsTwoFansWhileEitherSpins) {
  const auto fans = module(MetricID::fan1RPM, MetricID::fan2RPM);
  EXPECT_FALSE(fans.isVisible(withFans(0, 0)));
  EXPECT_TRUE(fans.isVisible(withFans(0, 900)));
  EXPECT_TRUE(fans.isVisible(withFans(900, 0)));
}

TEST(ModuleConfiguration, ShowsTwoFansWhenOneIsStillAndTheOtherHasNoReading) {
  // One valid reading, and not every one of them is a valid zero.
  const auto fans = module(MetricID::fan1RPM, MetricID::fan2RPM);
  EXPECT_TRUE(fans.isVisible(withFans(0, std::nullopt)));
}

TEST(ModuleConfiguration, TakesAStaleFanForNoReading) {
  auto snapshot = withFans(1200);
  snapshot.samples.set(MetricID::fan1RPM, {1200, Quality::stale, WallTime{}, ""});
  EXPECT_FALSE(module(MetricID::fan1RPM, MetricID::none).isVisible(snapshot));
}

TEST(ModuleConfiguration, TakesAValidSampleWithoutAValueForNoReading) {
  MetricSnapshot snapshot;
  snapshot.samples.set(MetricID::fan1RPM, {std::nullopt, Quality::valid, WallTime{}, ""});
  EXPECT_FALSE(module(MetricID::fan1RPM, MetricID::none).isVisible(snapshot));
  EXPECT_FALSE(module(MetricID::fan1RPM, MetricID::fan2RPM).isVisible(snapshot));
}

}  // namespace
}  // namespace vantora
