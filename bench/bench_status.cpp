// SPDX-License-Identifier: MIT
//
// What one tick costs behind the sampling: the signature always, picture and pixels when
// a text changed. "Cold" walks through more memory than the caches hold before each
// turn, which is how a program that runs once a second finds the machine.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/linux/fontconfig_lookup.hpp"
#include "platform/linux/freetype_text_engine.hpp"
#include "status/metric_formatter.hpp"
#include "status/rasterise.hpp"
#include "status/status_renderer.hpp"

namespace vantora {
namespace {

const WallTime now = wallTimeFromUnix(1'700'000'000);

MetricSnapshot usualReadings() {
  MetricSnapshot snapshot;
  const auto set = [&](MetricID metric, double value) {
    snapshot.samples.set(metric, MetricSample::valid(value, "fonte", now));
  };
  set(MetricID::batteryPercent, 88);
  set(MetricID::batteryTime, 95);
  set(MetricID::upload, 40'000);
  set(MetricID::download, 12'300'000);
  set(MetricID::cpuUsage, 17);
  set(MetricID::cpuTemperature, 41.4);
  return snapshot;
}

/// The default modules with the fonts of this machine.
struct World {
  AppConfiguration configuration;
  MetricSnapshot snapshot = usualReadings();
  FreetypeTextEngine engine{lookUpFonts()};

  StatusPresentation render() {
    return StatusRenderer::render(configuration, snapshot, {24, now, engine});
  }
};

void flushCaches() {
  constexpr std::size_t moreThanAnyCache = std::size_t{64} << 20U;
  constexpr std::size_t cacheLine = 64;
  static std::vector<std::uint8_t> memory(moreThanAnyCache);
  for (std::size_t place = 0; place < memory.size(); place += cacheLine) {
    ++memory[place];
  }
  benchmark::ClobberMemory();
}

template <typename Work>
void hot(benchmark::State& state, Work work) {
  World world;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(work(world));
  }
}

template <typename Work>
void cold(benchmark::State& state, Work work) {
  World world;
  benchmark::DoNotOptimize(work(world));
  while (state.KeepRunning()) {
    flushCaches();
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(work(world));
    const std::chrono::duration<double> span = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(span.count());
  }
}

std::string formatOneText(World& world) {
  return MetricFormatter::text(MetricID::upload, world.snapshot, now);
}

std::string sign(World& world) {
  return StatusRenderer::signature(world.configuration, world.snapshot, now);
}

StatusPresentation render(World& world) {
  return world.render();
}

AlphaBitmap rasteriseAt(World& world, double scale) {
  static const StatusImage image = world.render().image;
  return rasterise(image, world.engine, scale);
}

/// What a tick that changed a text costs from the readings to the pixels.
AlphaBitmap everything(World& world) {
  benchmark::DoNotOptimize(sign(world));
  return rasterise(world.render().image, world.engine, 1);
}

void lookUp(benchmark::State& state) {
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(lookUpFonts());
  }
}

void firstPicture(benchmark::State& state) {
  const FontSelection fonts = lookUpFonts();
  const AppConfiguration configuration;
  const MetricSnapshot snapshot = usualReadings();
  while (state.KeepRunning()) {
    FreetypeTextEngine engine(fonts);
    const StatusPresentation presentation =
        StatusRenderer::render(configuration, snapshot, {24, now, engine});
    benchmark::DoNotOptimize(rasterise(presentation.image, engine, 1));
  }
}

constexpr auto rasterise1 = [](World& world) { return rasteriseAt(world, 1); };
constexpr auto rasterise2 = [](World& world) { return rasteriseAt(world, 2); };
constexpr int coldTurns = 200;

BENCHMARK_CAPTURE(hot, format_one_text, formatOneText);
BENCHMARK_CAPTURE(hot, signature, sign);
BENCHMARK_CAPTURE(cold, signature, sign)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, render, render);
BENCHMARK_CAPTURE(cold, render, render)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, rasterise_1x, rasterise1);
BENCHMARK_CAPTURE(cold, rasterise_1x, rasterise1)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, rasterise_2x, rasterise2);
BENCHMARK_CAPTURE(cold, rasterise_2x, rasterise2)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, changed_tick, everything);
BENCHMARK_CAPTURE(cold, changed_tick, everything)->UseManualTime()->Iterations(coldTurns);
BENCHMARK(firstPicture)->Name("start/first_picture")->Unit(benchmark::kMillisecond);
BENCHMARK(lookUp)->Name("start/look_up_fonts")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantora

BENCHMARK_MAIN();
