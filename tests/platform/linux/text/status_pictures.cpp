// SPDX-License-Identifier: MIT
#include "platform/linux/text/status_pictures.hpp"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <utility>

#include "platform/linux/fonts/dejavu_fonts.hpp"
#include "platform/linux/fonts/freetype_text_engine.hpp"
#include "status/rasterise.hpp"
#include "status/status_renderer.hpp"
#include "support/example_time.hpp"

namespace vantora::test {
namespace {

struct Scene {
  std::string name;
  std::vector<double> scales;
  std::function<void(AppConfiguration&, MetricSnapshot&)> prepare;
  double thickness = 24;
};

void set(MetricSnapshot& snapshot, MetricID metric, double value) {
  snapshot.samples.set(metric, MetricSample::valid(value, "fonte", exampleTime));
}

ModuleConfiguration module(MetricID top, MetricID bottom, double width = 34) {
  ModuleConfiguration result;
  result.top = top;
  result.bottom = bottom;
  result.width = width;
  return result;
}

void usualReadings(MetricSnapshot& snapshot) {
  set(snapshot, MetricID::batteryPercent, 88);
  set(snapshot, MetricID::batteryTime, 95);
  set(snapshot, MetricID::upload, 40'000);
  set(snapshot, MetricID::download, 12'300'000);
  set(snapshot, MetricID::cpuUsage, 17);
  set(snapshot, MetricID::cpuTemperature, 41.4);
  set(snapshot, MetricID::fan1RPM, 2400);
  set(snapshot, MetricID::fan2RPM, 5170);
}

void defaultModules(AppConfiguration& /*configuration*/, MetricSnapshot& snapshot) {
  usualReadings(snapshot);
}

void nothingMeasured(AppConfiguration& /*configuration*/, MetricSnapshot& snapshot) {
  snapshot.batteryOnAC = true;
}

void noModules(AppConfiguration& configuration, MetricSnapshot& /*snapshot*/) {
  configuration.modules.clear();
}

void widestTexts(AppConfiguration& configuration, MetricSnapshot& snapshot) {
  configuration.modules.push_back(module(MetricID::fan1RPM, MetricID::adapterWatts));
  set(snapshot, MetricID::batteryPercent, 100);
  set(snapshot, MetricID::batteryTime, 9999);
  set(snapshot, MetricID::upload, 2e9);
  set(snapshot, MetricID::download, 990'000);
  set(snapshot, MetricID::cpuUsage, 100);
  set(snapshot, MetricID::cpuTemperature, 100);
  set(snapshot, MetricID::fan1RPM, 12345);
  set(snapshot, MetricID::adapterWatts, 12000);
}

void alignments(AppConfiguration& configuration, MetricSnapshot& snapshot) {
  usualReadings(snapshot);
  configuration.modules.clear();
  for (const Alignment alignment : {Alignment::left, Alignment::center, Alignment::right}) {
    ModuleConfiguration& added =
        configuration.modules.emplace_back(module(MetricID::cpuUsage, MetricID::download, 44));
    added.alignment = alignment;
  }
}

void paddings(AppConfiguration& configuration, MetricSnapshot& snapshot) {
  usualReadings(snapshot);
  configuration.horizontalPadding = 10;
  configuration.verticalPadding = 1;
  configuration.lineGap = 2;
  configuration.modules[1].gapAfter = 0;
}

void quotas(AppConfiguration& configuration, MetricSnapshot& snapshot) {
  configuration.modules = {
      module(MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset),
      module(MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent),
  };
  snapshot.codex.status = CodexQuotaStatus::stale;
  snapshot.codex.usedPercent = 12.97;
  snapshot.codex.lastSuccess = exampleTime;
  snapshot.codex.resetAt = exampleTime + std::chrono::minutes{14 * 60 + 59};
  snapshot.claude.status = ClaudeQuotaStatus::ready;
  snapshot.claude.weeklyUsed = 130;
  snapshot.claude.sessionUsed = 99.5;
  snapshot.claude.lastSuccess = exampleTime;
}

void quotaWords(AppConfiguration& configuration, MetricSnapshot& snapshot) {
  quotas(configuration, snapshot);
  snapshot.codex.status = CodexQuotaStatus::permissionDenied;
  snapshot.claude.status = ClaudeQuotaStatus::limitsUnavailable;
}

void largeFonts(AppConfiguration& configuration, MetricSnapshot& snapshot) {
  usualReadings(snapshot);
  for (ModuleConfiguration& each : configuration.modules) {
    each.fontTop = 13;
    each.fontBottom = 11;
    each.widthMode = WidthMode::automatic;
  }
}

const std::vector<Scene>& scenes() {
  static const std::vector<Scene> all{
      {"default_modules", {1, 1.5, 2, 3}, defaultModules},
      {"nothing_measured", {1, 2}, nothingMeasured},
      {"no_modules", {1, 2, 3}, noModules},
      {"widest_texts", {1, 2}, widestTexts},
      {"alignments", {1, 2}, alignments},
      {"paddings", {1, 2}, paddings},
      {"quotas", {1, 2}, quotas},
      {"quota_words", {1, 2}, quotaWords},
      {"large_fonts", {1}, largeFonts, 37},
  };
  return all;
}

std::string fileName(const Scene& scene, double scale) {
  const auto whole = static_cast<int>(scale);
  const bool isWhole = scale == whole;
  return scene.name + "@" + std::to_string(whole) + (isWhole ? "" : "_5");
}

}  // namespace

std::vector<StatusPicture> drawStatusPictures() {
  FreetypeTextEngine engine(dejavuFonts());
  std::vector<StatusPicture> pictures;
  for (const Scene& scene : scenes()) {
    AppConfiguration configuration;
    MetricSnapshot snapshot;
    scene.prepare(configuration, snapshot);
    const StatusPresentation presentation =
        StatusRenderer::render(configuration, snapshot, {scene.thickness, exampleTime, engine});
    for (const double scale : scene.scales) {
      pictures.push_back({fileName(scene, scale), rasterise(presentation.image, engine, scale)});
    }
  }
  return pictures;
}

std::optional<AlphaBitmap> readPicture(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string magic;
  int width = 0;
  int height = 0;
  int most = 0;
  constexpr int maxSide = 4096;
  if (!(file >> magic >> width >> height >> most) || magic != "P5" || most != 255 || width < 1 ||
      height < 1 || width > maxSide || height > maxSide || file.get() != '\n') {
    return std::nullopt;
  }
  AlphaBitmap bitmap(width, height);
  const std::string pixels{std::istreambuf_iterator<char>(file), {}};
  if (pixels.size() != bitmap.pixels.size()) {
    return std::nullopt;
  }
  std::transform(pixels.begin(), pixels.end(), bitmap.pixels.begin(),
                 [](char pixel) { return static_cast<std::uint8_t>(pixel); });
  return bitmap;
}

bool writePicture(const std::string& path, const AlphaBitmap& bitmap) {
  std::ofstream file(path, std::ios::binary);
  file << "P5\n" << bitmap.width << ' ' << bitmap.height << "\n255\n";
  std::copy(bitmap.pixels.begin(), bitmap.pixels.end(), std::ostreambuf_iterator<char>(file));
  file.flush();
  return file.good();
}

}  // namespace vantora::test
