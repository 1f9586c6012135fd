// SPDX-License-Identifier: MIT
#include "status/status_renderer.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/words.hpp"
#include "status/status_modules.hpp"
#include "support/example_time.hpp"
#include "support/fake_text_engine.hpp"

namespace vantora {
namespace {

using test::FakeTextEngine;

using test::exampleTime;
constexpr double usualThickness = 24;
constexpr const char* reducedWarning =
    "Fonte, margem ou intervalo reduzido para caber nas duas linhas desta barra.";

struct StatusRendererTest : ::testing::Test {
  StatusRendererTest() {
    configuration.modules.clear();
    set(MetricID::cpuUsage, 17);
    set(MetricID::cpuTemperature, 41.4);
    set(MetricID::upload, 40'000);
    set(MetricID::download, 125'400'000);
  }

  void set(MetricID metric, double value) {
    snapshot.samples.set(metric, MetricSample::valid(value, "fonte", exampleTime));
  }

  ModuleConfiguration& add(MetricID top, MetricID bottom, double width = 34) {
    ModuleConfiguration module;
    module.top = top;
    module.bottom = bottom;
    module.width = width;
    return configuration.modules.emplace_back(module);
  }

  StatusPresentation render(double thickness = usualThickness) {
    return StatusRenderer::render(configuration, snapshot, {thickness, exampleTime, engine});
  }

  AppConfiguration configuration;
  MetricSnapshot snapshot;
  FakeTextEngine engine;
};

double advance(double pointSize, int characters) {
  return FakeTextEngine::advance * pointSize * characters;
}

std::string textOf(const PlacedText& placed) {
  std::string text;
  for (const TextRun& run : placed.text) {
    text += run.text;
  }
  return text;
}

// --- without modules

void expectFallback(const StatusPresentation& presentation, double height) {
  EXPECT_EQ(presentation.width, 20);
  EXPECT_EQ(presentation.image.width, 20);
  EXPECT_EQ(presentation.image.height, height);
  EXPECT_EQ(presentation.accessibilityText, "Vantora: sem módulos ativos. Clique para configurar.");
  EXPECT_EQ(presentation.warning, std::nullopt);
  ASSERT_EQ(presentation.image.texts.size(), 1U);
  const PlacedText& mark = presentation.image.texts.front();
  EXPECT_EQ(mark.text, (StyledText{{"VA", {Typeface::system, 9}}}));
  EXPECT_EQ(mark.x, 2);
  // The text's box, not its baseline, is on the point.
  EXPECT_DOUBLE_EQ(mark.y, (height - 11) * 0.5 + FakeTextEngine::descent * 9);
}

TEST_F(StatusRendererTest, ShowsItsMarkWithoutModules) {
  expectFallback(render(), 22);
}

TEST_F(StatusRendererTest, ShowsItsMarkWhenEveryModuleIsDisabledOrEmpty) {
  add(MetricID::cpuUsage, MetricID::none).enabled = false;
  add(MetricID::none, MetricID::none);
  expectFallback(render(), 22);
}

TEST_F(StatusRendererTest, ShowsItsMarkWhenOnlyStoppedFansAreLeft) {
  add(MetricID::fan1RPM, MetricID::fan2RPM);
  set(MetricID::fan1RPM, 0);
  set(MetricID::fan2RPM, 0);
  expectFallback(render(), 22);
  set(MetricID::fan2RPM, 1200);
  EXPECT_EQ(render().image.texts.size(), 2U);
}

TEST_F(StatusRendererTest, WarnsOfNothingWithoutModules) {
  configuration.verticalPadding = 10;
  configuration.lineGap = 8;
  expectFallback(render(), 22);
}

// --- height and rows

TEST_F(StatusRendererTest, IsTwoPointsLowerThanTheBarAndAtLeastTwenty) {
  add(MetricID::cpuUsage, MetricID::none);
  EXPECT_EQ(render(37).image.height, 35);
  EXPECT_EQ(render(24).image.height, 22);
  EXPECT_EQ(render(22).image.height, 20);
  EXPECT_EQ(render(21).image.height, 20);
  EXPECT_EQ(render(0).image.height, 20);
}

TEST_F(StatusRendererTest, HangsEachLineFromTheTopOfItsRow) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  const StatusImage image = render().image;
  ASSERT_EQ(image.texts.size(), 2U);
  // Rows of 11 points, 9-point fonts: the rectangles start at 0 and at 11.
  EXPECT_EQ(textOf(image.texts[0]), "17%");
  EXPECT_DOUBLE_EQ(image.texts[0].y, 22 - FakeTextEngine::ascent * 9);
  EXPECT_EQ(textOf(image.texts[1]), "41°C");
  EXPECT_DOUBLE_EQ(image.texts[1].y, 11 - FakeTextEngine::ascent * 9);
}

TEST_F(StatusRendererTest, KeepsPaddingAndLineGapThatFit) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  configuration.verticalPadding = 1;
  configuration.lineGap = 2;
  const StatusPresentation presentation = render(26);
  // Height 24, inner height 22, rows of 10.
  EXPECT_EQ(presentation.warning, std::nullopt);
  EXPECT_DOUBLE_EQ(presentation.image.texts[0].y, 1 + 10 + 2 + (10 - 9) * 0.5 - 1 + 10 - 8.1);
  EXPECT_DOUBLE_EQ(presentation.image.texts[1].y, 1 + (10 - 9) * 0.5 - 1 + 10 - 8.1);
}

TEST_F(StatusRendererTest, CutsThePaddingToItsLimitAndWarnsEvenIfTheFontsFit) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  module.fontTop = 8;
  module.fontBottom = 8;
  configuration.verticalPadding = 10;
  const StatusPresentation presentation = render();
  // Height 22: 2 points above and below, rows of 9, 8-point fonts.
  EXPECT_EQ(presentation.warning, reducedWarning);
  EXPECT_DOUBLE_EQ(presentation.image.texts[0].y, 2 + 9 + (9 - 8) * 0.5 - 1 + 9 - 7.2);
  EXPECT_DOUBLE_EQ(presentation.image.texts[1].y, 2 + (9 - 8) * 0.5 - 1 + 9 - 7.2);
}

TEST_F(StatusRendererTest, TakesAPaddingExactlyAtItsLimit) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  module.fontTop = 8;
  module.fontBottom = 8;
  configuration.verticalPadding = 2;
  EXPECT_EQ(render().warning, std::nullopt);
  configuration.verticalPadding = 2.01;
  EXPECT_EQ(render().warning, reducedWarning);
}

TEST_F(StatusRendererTest, CutsTheLineGapToItsLimitAndWarns) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  module.fontTop = 8;
  module.fontBottom = 8;
  configuration.lineGap = 4;
  EXPECT_EQ(render().warning, std::nullopt);
  const double topAtLimit = render().image.texts[0].y;
  configuration.lineGap = 8;
  EXPECT_EQ(render().warning, reducedWarning);
  EXPECT_DOUBLE_EQ(render().image.texts[0].y, topAtLimit);
}

TEST_F(StatusRendererTest, CountsThePaddingBeforeTheLineGap) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  module.fontTop = 8;
  module.fontBottom = 8;
  configuration.verticalPadding = 2;
  configuration.lineGap = 0.5;
  // Nothing is left for a gap: the rows stay at 9 points.
  EXPECT_EQ(render().warning, reducedWarning);
  EXPECT_DOUBLE_EQ(render().image.texts[0].y - render().image.texts[1].y, 9);
}

// --- fonts

TEST_F(StatusRendererTest, SetsRatesMonospacedAndEverythingElseInTabularDigits) {
  add(MetricID::upload, MetricID::cpuUsage);
  add(MetricID::batteryTime, MetricID::download);
  const StatusImage image = render().image;
  ASSERT_EQ(image.texts.size(), 4U);
  EXPECT_EQ(image.texts[0].text.front().font, (Font{Typeface::monospaced, 9}));
  EXPECT_EQ(image.texts[1].text.front().font, (Font{Typeface::tabularDigits, 9}));
  EXPECT_EQ(image.texts[2].text.front().font, (Font{Typeface::tabularDigits, 9}));
  EXPECT_EQ(image.texts[3].text.front().font, (Font{Typeface::monospaced, 9}));
}

TEST_F(StatusRendererTest, ReducesAFontToItsRowAndWarns) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  module.fontTop = 10;
  const StatusPresentation presentation = render(22);
  // Height 20, rows of 10, fonts of 9 at most.
  EXPECT_EQ(presentation.image.height, 20);
  EXPECT_EQ(presentation.image.texts[0].text.front().font.pointSize, 9);
  EXPECT_EQ(presentation.image.texts[1].text.front().font.pointSize, 9);
  EXPECT_EQ(presentation.warning, reducedWarning);
}

TEST_F(StatusRendererTest, WarnsOfAReducedBottomFontToo) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature).fontBottom = 10.5;
  EXPECT_EQ(render(24).warning, reducedWarning);
  EXPECT_EQ(render(25).warning, std::nullopt);
}

TEST_F(StatusRendererTest, NeverReducesAFontBelowEightPoints) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature);
  module.fontTop = 9;
  module.fontBottom = 8;
  configuration.verticalPadding = 1;
  // Height 20, rows of 9.
  const StatusPresentation presentation = render(20);
  EXPECT_EQ(presentation.image.texts[0].text.front().font.pointSize, 8);
  EXPECT_EQ(presentation.image.texts[1].text.front().font.pointSize, 8);
  EXPECT_EQ(presentation.warning, reducedWarning);
}

TEST_F(StatusRendererTest, DoesNotWarnOfAHiddenModulesFont) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  add(MetricID::fan1RPM, MetricID::none).fontTop = 13;
  EXPECT_EQ(render().warning, std::nullopt);
}

TEST_F(StatusRendererTest, SetsTheUnitOfARateSmaller) {
  add(MetricID::upload, MetricID::download);
  const StatusImage image = render().image;
  const Font unit{Typeface::monospaced, 9 * 0.7};
  EXPECT_EQ(image.texts[0].text, (StyledText{{"0,04", {Typeface::monospaced, 9}}, {"M", unit}}));
  EXPECT_EQ(image.texts[1].text, (StyledText{{"125", {Typeface::monospaced, 9}}, {"M", unit}}));
}

TEST_F(StatusRendererTest, LeavesARateWithoutUnitInOneRun) {
  snapshot.samples.set(MetricID::upload, MetricSample::waiting("fonte"));
  add(MetricID::upload, MetricID::none);
  EXPECT_EQ(render().image.texts[0].text, (StyledText{{"—", {Typeface::monospaced, 9}}}));
}

TEST_F(StatusRendererTest, LeavesOtherTextsThatEndInTheUnitLetterAlone) {
  add(MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset);
  snapshot.codex.status = CodexQuotaStatus::weeklyUnavailable;
  const StatusImage image = render().image;
  EXPECT_EQ(image.texts[1].text, (StyledText{{"S/SEM", {Typeface::tabularDigits, 9}}}));
}

// --- widths

TEST_F(StatusRendererTest, KeepsTheWidthOfAFixedModule) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature, 34);
  EXPECT_DOUBLE_EQ(render().width, 3 + 34 + 3);
  EXPECT_EQ(render().width, render().image.width);
}

TEST_F(StatusRendererTest, GrowsAFixedModuleToItsWidestTextPlusTwo) {
  add(MetricID::download, MetricID::none, 16);
  const double widest = advance(9, 4) + advance(9 * 0.7, 1);
  EXPECT_DOUBLE_EQ(render().width, 6 + widest + 2);
  // ... and it does not follow the text that is shown.
  set(MetricID::download, 1'000'000);
  EXPECT_DOUBLE_EQ(render().width, 6 + widest + 2);
}

TEST_F(StatusRendererTest, GrowsAFixedModuleToTheWiderOfItsLines) {
  add(MetricID::cpuUsage, MetricID::batteryTime, 16);
  EXPECT_DOUBLE_EQ(render().width, 6 + advance(9, 6) + 2);
}

TEST_F(StatusRendererTest, DoesNotCapAFixedModule) {
  add(MetricID::cpuUsage, MetricID::none, 160);
  configuration.modules[0].fontTop = 13;
  EXPECT_DOUBLE_EQ(render(60).width, 166);
}

TEST_F(StatusRendererTest, KeepsRoomForTheDateWhenTheRenewalShowsAsOne) {
  add(MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset, 16);
  EXPECT_DOUBLE_EQ(render().width, 6 + advance(9, 6) + 2);
  snapshot.codex.settings.showResetDate = true;
  EXPECT_DOUBLE_EQ(render().width, 6 + advance(9, 11) + 2);
}

TEST_F(StatusRendererTest, FitsAnAutomaticModuleToItsTexts) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature, 100).widthMode = WidthMode::automatic;
  EXPECT_DOUBLE_EQ(render().width, 6 + advance(9, 4) + 2);
  set(MetricID::cpuTemperature, 100);
  EXPECT_DOUBLE_EQ(render().width, 6 + advance(9, 5) + 2);
}

TEST_F(StatusRendererTest, GivesAnAutomaticModuleAtLeastSixteenPoints) {
  add(MetricID::batteryPercent, MetricID::batteryTime).widthMode = WidthMode::automatic;
  EXPECT_EQ(textOf(render().image.texts[0]), "—");
  EXPECT_DOUBLE_EQ(render().width, 6 + 16);
}

TEST_F(StatusRendererTest, GivesAnAutomaticModuleAtMostAHundredAndSixtyPoints) {
  ModuleConfiguration& module = add(MetricID::fan1RPM, MetricID::none);
  module.widthMode = WidthMode::automatic;
  module.fontTop = 13;
  set(MetricID::fan1RPM, 1e18);
  EXPECT_DOUBLE_EQ(render(60).width, 6 + advance(13, 19) + 2);
  module.fontTop = 20;
  EXPECT_DOUBLE_EQ(render(60).width, 6 + 160);
}

TEST_F(StatusRendererTest, PutsAGapAfterEveryModuleButTheLast) {
  for (int count = 0; count < 3; ++count) {
    add(MetricID::cpuUsage, MetricID::none, 30);
  }
  EXPECT_DOUBLE_EQ(render().width, 3 + 30 + 4 + 30 + 4 + 30 + 3);
  configuration.modules[1].gapAfter = 0;
  configuration.modules[2].gapAfter = 24;
  const StatusImage image = render().image;
  EXPECT_DOUBLE_EQ(image.width, 3 + 30 + 4 + 30 + 0 + 30 + 3);
  const double indent = (30 - advance(9, 3)) / 2;
  EXPECT_DOUBLE_EQ(image.texts[0].x, 3 + indent);
  EXPECT_DOUBLE_EQ(image.texts[1].x, 37 + indent);
  EXPECT_DOUBLE_EQ(image.texts[2].x, 67 + indent);
}

TEST_F(StatusRendererTest, PutsNoGapAroundAHiddenModule) {
  add(MetricID::cpuUsage, MetricID::none, 30);
  add(MetricID::fan1RPM, MetricID::none, 30).gapAfter = 20;
  add(MetricID::cpuUsage, MetricID::none, 30);
  add(MetricID::cpuUsage, MetricID::none, 30).enabled = false;
  EXPECT_DOUBLE_EQ(render().width, 3 + 30 + 4 + 30 + 3);
}

TEST_F(StatusRendererTest, TakesTheHorizontalPaddingOnBothEnds) {
  add(MetricID::cpuUsage, MetricID::none, 30).alignment = Alignment::left;
  configuration.horizontalPadding = 16;
  EXPECT_DOUBLE_EQ(render().width, 62);
  EXPECT_DOUBLE_EQ(render().image.texts[0].x, 16);
}

TEST_F(StatusRendererTest, AlignsEachLineWithinItsColumn) {
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::cpuTemperature, 40);
  const double top = advance(9, 3);
  const double bottom = advance(9, 4);
  module.alignment = Alignment::left;
  EXPECT_DOUBLE_EQ(render().image.texts[0].x, 3);
  EXPECT_DOUBLE_EQ(render().image.texts[1].x, 3);
  module.alignment = Alignment::center;
  EXPECT_DOUBLE_EQ(render().image.texts[0].x, 3 + (40 - top) / 2);
  EXPECT_DOUBLE_EQ(render().image.texts[1].x, 3 + (40 - bottom) / 2);
  module.alignment = Alignment::right;
  EXPECT_DOUBLE_EQ(render().image.texts[0].x, 3 + 40 - top);
  EXPECT_DOUBLE_EQ(render().image.texts[1].x, 3 + 40 - bottom);
}

TEST_F(StatusRendererTest, DrawsNothingForAnEmptyLine) {
  add(MetricID::none, MetricID::cpuUsage);
  const StatusImage image = render().image;
  ASSERT_EQ(image.texts.size(), 1U);
  EXPECT_EQ(textOf(image.texts[0]), "17%");
}

TEST_F(StatusRendererTest, MeasuresEachLineTwice) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  add(MetricID::upload, MetricID::download);
  [[maybe_unused]] const StatusPresentation presentation = render();
  EXPECT_EQ(engine.measurements, 8);
}

// --- accessibility

TEST_F(StatusRendererTest, DescribesEveryVisibleLine) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature);
  add(MetricID::fan1RPM, MetricID::fan2RPM);
  add(MetricID::upload, MetricID::none);
  EXPECT_EQ(render().accessibilityText, std::string("CPU · uso total: 17%; ") +
                                            Words::cpuTemperatureTitle +
                                            ": 41°C. Rede · upload: 0,04M; Linha vazia: ");
}

TEST_F(StatusRendererTest, AddsEachQuotaMessageOnceAndCodexFirst) {
  snapshot.codex.message = "Mensagem do Codex.";
  snapshot.claude.message = "Mensagem do Claude.";
  add(MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent);
  add(MetricID::cpuUsage, MetricID::codexWeeklyPercent);
  add(MetricID::codexWeeklyReset, MetricID::none);
  const std::string text = render().accessibilityText;
  EXPECT_TRUE(text.ends_with(
      "Codex · tempo até renovar: OFF; Linha vazia: . Mensagem do Codex.. Mensagem do Claude."))
      << text;
  EXPECT_EQ(text.find("Mensagem do Codex."), text.rfind("Mensagem do Codex."));
}

TEST_F(StatusRendererTest, AddsNoMessageOfAQuotaThatNoVisibleModuleShows) {
  add(MetricID::cpuUsage, MetricID::none);
  add(MetricID::codexWeeklyPercent, MetricID::none).enabled = false;
  EXPECT_EQ(render().accessibilityText, "CPU · uso total: 17%; Linha vazia: ");
}

TEST_F(StatusRendererTest, WritesTheSameInLinesForAToolTip) {
  snapshot.codex.message = "Sessão expirada. Entre de novo.";
  add(MetricID::cpuUsage, MetricID::none);
  add(MetricID::codexWeeklyPercent, MetricID::none);
  EXPECT_EQ(render().toolTip,
            "CPU · uso total: 17%; Linha vazia: \n"
            "Codex · cota semanal (%): --; Linha vazia: \n"
            "Sessão expirada. Entre de novo.");
  configuration.modules.clear();
  EXPECT_EQ(render().toolTip, render().accessibilityText);
}

TEST_F(StatusRendererTest, SaysInTheToolTipThatNothingIsMeasured) {
  add(MetricID::cpuUsage, MetricID::none);
  const std::string before = render().toolTip;
  const std::string spoken = render().accessibilityText;
  configuration.paused = true;
  EXPECT_EQ(render().toolTip, before + "\nColeta pausada");
  EXPECT_EQ(render().accessibilityText, spoken);
}

// --- modules

TEST_F(StatusRendererTest, HandsOnTheModulesThatThePictureIsMadeOf) {
  configuration.horizontalPadding = 3;
  configuration.gap = 4;
  add(MetricID::fan1RPM, MetricID::none);
  ModuleConfiguration& module = add(MetricID::cpuUsage, MetricID::batteryTime);
  module.id = UUID::random();
  module.fontTop = 9;
  module.fontBottom = 7;
  add(MetricID::upload, MetricID::none);
  const std::vector<StatusModule> modules = render().modules;
  ASSERT_EQ(modules.size(), 2U);
  EXPECT_EQ(
      modules[0],
      (StatusModule{.id = configuration.modules[1].id,
                    .index = 1,
                    .top = {MetricID::cpuUsage, "17%", true, {Typeface::tabularDigits, 9}},
                    .bottom = {MetricID::batteryTime, "—", false, {Typeface::tabularDigits, 7}},
                    .x = 3,
                    .width = 34}));
  EXPECT_EQ(modules[1].index, 2U);
  EXPECT_EQ(modules[1].x, 3 + 34 + 4);
  EXPECT_EQ(modules[1].bottom.text, "");
}

TEST_F(StatusRendererTest, HandsOnNoModuleWithItsMark) {
  EXPECT_TRUE(render().modules.empty());
}

TEST_F(StatusRendererTest, LeavesNothingOfWhatWasLaidOutBefore) {
  add(MetricID::cpuUsage, MetricID::cpuTemperature).fontTop = 30;
  add(MetricID::upload, MetricID::download);
  StatusPresentation presentation = render();
  const auto expectAnew = [&] {
    StatusModules::read(configuration, snapshot, exampleTime, presentation.modules);
    StatusRenderer::layOut(configuration, snapshot, {usualThickness, exampleTime, engine},
                           presentation);
    EXPECT_EQ(presentation, render());
  };
  configuration.modules.pop_back();
  configuration.modules.back().fontTop = 9;
  expectAnew();
  configuration.modules.clear();
  expectAnew();
  add(MetricID::upload, MetricID::none);
  expectAnew();
}

TEST_F(StatusRendererTest, GivesEqualPresentationsForEqualValues) {
  configuration.modules = AppConfiguration::defaultModules();
  EXPECT_EQ(render(), render());
}

}  // namespace
}  // namespace vantora
