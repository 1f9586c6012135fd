// SPDX-License-Identifier: MIT
#include "settings/window/example_state.hpp"

#include "platform/linux/fonts/fontconfig_lookup.hpp"
#include "platform/linux/fonts/freetype_text_engine.hpp"
#include "settings/agent/metric_readings.hpp"
#include "status/rasterise.hpp"
#include "status/status_renderer.hpp"
#include "support/example_time.hpp"

namespace vantora::test {
namespace {

constexpr double thickness = 24;
UUID identity(std::uint8_t number) {
  std::array<std::uint8_t, 16> bytes{};
  bytes.back() = number;
  return UUID(bytes);
}

ModuleConfiguration module(std::uint8_t number, MetricID top, MetricID bottom) {
  ModuleConfiguration made;
  made.id = identity(number);
  made.top = top;
  made.bottom = bottom;
  return made;
}

MetricSnapshot snapshot(bool isPaused) {
  MetricSnapshot readings;
  const auto set = [&](MetricID metric, double value) {
    MetricSample sample = MetricSample::valid(value, "exemplo", exampleTime);
    if (isPaused) {
      sample.quality = Quality::stale;
    }
    readings.samples.set(metric, sample);
  };
  set(MetricID::batteryPercent, 87);
  set(MetricID::batteryTime, 254);
  set(MetricID::upload, 180'000);
  set(MetricID::download, 12'400'000);
  set(MetricID::cpuUsage, 23);
  set(MetricID::cpuTemperature, 61);
  set(MetricID::fan1RPM, 2310);
  set(MetricID::fan2RPM, 2180);
  readings.networkName = "wlp3s0";
  readings.codex.status = CodexQuotaStatus::ready;
  readings.codex.usedPercent = 38;
  readings.codex.lastSuccess = exampleTime - std::chrono::minutes(2);
  readings.codex.resetAt = exampleTime + std::chrono::hours(77);
  readings.codex.message = "Cota semanal da categoria codex, consultada com sucesso.";
  readings.codex.candidates = {{"codex", "Codex"}, {"codex-spark", "Codex Spark"}};
  readings.claude.status = ClaudeQuotaStatus::ready;
  readings.claude.weeklyUsed = 52;
  readings.claude.sessionUsed = 17;
  readings.claude.lastSuccess = exampleTime - std::chrono::minutes(1);
  readings.claude.message = "Limites do Claude (semanal e 5 horas) consultados com sucesso.";
  return readings;
}

}  // namespace

WindowState exampleState(double scale, bool isPaused) {
  WindowState state;
  AppConfiguration& configuration = state.configuration;
  configuration.modules = {
      module(1, MetricID::batteryPercent, MetricID::batteryTime),
      module(2, MetricID::upload, MetricID::download),
      module(3, MetricID::cpuUsage, MetricID::cpuTemperature),
      module(4, MetricID::fan1RPM, MetricID::fan2RPM),
      module(5, MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset),
      module(6, MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent)};
  configuration.modules[2].widthMode = WidthMode::automatic;
  configuration.modules[3].gapAfter = 10;
  configuration.codexSettings = CodexQuotaSettings{};
  configuration.codexSettings->enabled = true;
  configuration.claudeSettings = ClaudeQuotaSettings{};
  configuration.claudeSettings->enabled = true;

  configuration.paused = isPaused;

  const MetricSnapshot readings = snapshot(isPaused);
  state.networkName = readings.networkName;
  state.links = {{"wlp3s0", true, true, true},
                 {"enp0s31f6", true, true, false},
                 {"docker0", false, false, true},
                 {"wg0", false, true, true}};
  state.codex = {readings.codex.message, readings.codex.lastSuccess, "/usr/local/bin/codex",
                 readings.codex.candidates};
  state.claude = {
      readings.claude.message, readings.claude.lastSuccess, "/usr/local/bin/claude", {}};

  FreetypeTextEngine engine(lookUpFonts());
  const StatusPresentation presentation =
      StatusRenderer::render(configuration, readings, {thickness, exampleTime, engine});
  AlphaBitmap bitmap = rasterise(presentation.image, engine, scale);
  state.picture = {
      presentation.width,  scale, bitmap.width, bitmap.height, std::move(bitmap.pixels),
      presentation.warning};
  state.picture.spoken = presentation.accessibilityText;
  for (const StatusModule& shown : presentation.modules) {
    state.picture.blocks.push_back({shown.id, shown.x, shown.width});
  }
  bitmap = rasterise(presentation.image, engine, 2 * scale);
  state.picture.enlarged = {2 * scale, bitmap.width, bitmap.height, std::move(bitmap.pixels)};
  state.readings = metricReadings(configuration, readings, exampleTime);
  return state;
}

}  // namespace vantora::test
