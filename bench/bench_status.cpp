// SPDX-License-Identifier: MIT
//
// What one tick costs behind the sampling: the signature always, picture and pixels when
// a text changed. "Cold" walks through more memory than the caches hold before each
// turn, which is how a program that runs once a second finds the machine.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/linux/fonts/fontconfig_lookup.hpp"
#include "platform/linux/fonts/freetype_text_engine.hpp"
#include "platform/linux/panels/status_item_picture.hpp"
#include "status/drawn_image.hpp"
#include "status/metric_formatter.hpp"
#include "status/rasterise.hpp"
#include "status/status_modules.hpp"
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
  std::vector<StatusModule> modules;
  std::string signature;
  StatusPresentation presentation;
  std::vector<std::uint8_t> argb;
  std::array<DrawnImage, 2> drawn;
  bool isOdd = false;

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

constexpr int coldTurns = 200;

template <typename Work>
void hot(benchmark::State& state, Work work) {
  World world;
  benchmark::DoNotOptimize(work(world));  // the fonts
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(work(world));
  }
}

template <typename Work>
void cold(benchmark::State& state, Work work) {
  World world;
  std::vector<double> spans;
  benchmark::DoNotOptimize(work(world));
  while (state.KeepRunning()) {
    flushCaches();
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(work(world));
    const std::chrono::duration<double> span = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(span.count());
    spans.push_back(span.count());
  }
  // Undisturbed by what else the machine does meanwhile.
  std::nth_element(spans.begin(), spans.begin() + coldTurns / 2, spans.end());
  constexpr double nanoseconds = 1e9;
  state.counters["median_ns"] = spans[coldTurns / 2] * nanoseconds;
}

std::string formatOneText(World& world) {
  return MetricFormatter::text(MetricID::upload, world.snapshot, now);
}

/// What every tick costs, changed or not.
std::size_t sign(World& world) {
  StatusModules::read(world.configuration, world.snapshot, now, world.modules);
  StatusModules::sign(world.modules, world.signature);
  return world.signature.size();
}

StatusPresentation render(World& world) {
  return world.render();
}

AlphaBitmap rasteriseAt(World& world, double scale) {
  static const StatusImage image = world.render().image;
  return rasterise(image, world.engine, scale);
}

/// A template in the colours that a panel is sent, on a plate.
std::size_t tintAt(World& world, double scale) {
  static const AlphaBitmap bitmap = rasteriseAt(world, scale);
  world.argb.resize(bitmap.pixels.size() * 4);
  tint(bitmap, Ink::lightOnPlate, 5 * scale, world.argb);
  return world.argb.size();
}

/// What a panel that asks for the picture is sent: the number of its bytes.
std::size_t fetchAt(World& world, double scale, DrawnImage& drawn) {
  const StatusImage& image = world.presentation.image;
  const AlphaBitmap& bitmap =
      drawn.draw(image, {.width = image.width, .height = image.height}, world.engine, scale);
  // The message has room for the larger picture already.
  world.argb.resize(std::max(world.argb.size(), bitmap.pixels.size() * 4));
  tint(bitmap, Ink::lightOnPlate, 5 * scale, std::span(world.argb).first(bitmap.pixels.size() * 4));
  return bitmap.pixels.size();
}

/// What a tick costs from the readings to what a panel is sent that takes both scales.
std::size_t tick(World& world, double usage) {
  world.snapshot.samples.set(MetricID::cpuUsage, MetricSample::valid(usage, "fonte", now));
  benchmark::DoNotOptimize(sign(world));
  world.presentation.modules.swap(world.modules);
  StatusRenderer::layOut(world.configuration, world.snapshot, {24, now, world.engine},
                         world.presentation);
  return fetchAt(world, 1, world.drawn[0]) + fetchAt(world, 2, world.drawn[1]);
}

/// One module of three has changed.
std::size_t changedTick(World& world) {
  world.isOdd = !world.isOdd;
  return tick(world, world.isOdd ? 17 : 28);
}

/// The same without the pictures of the tick before.
std::size_t changedTickDrawnAnew(World& world) {
  world.drawn = {};
  return changedTick(world);
}

/// Nothing has changed, and the panel asks nevertheless.
std::size_t askedAgain(World& world) {
  return tick(world, 17);
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
constexpr auto tint1 = [](World& world) { return tintAt(world, 1); };
constexpr auto tint2 = [](World& world) { return tintAt(world, 2); };

BENCHMARK_CAPTURE(hot, format_one_text, formatOneText);
BENCHMARK_CAPTURE(hot, signature, sign);
BENCHMARK_CAPTURE(cold, signature, sign)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, render, render);
BENCHMARK_CAPTURE(cold, render, render)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, rasterise_1x, rasterise1);
BENCHMARK_CAPTURE(cold, rasterise_1x, rasterise1)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, rasterise_2x, rasterise2);
BENCHMARK_CAPTURE(cold, rasterise_2x, rasterise2)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, tint_1x, tint1);
BENCHMARK_CAPTURE(hot, tint_2x, tint2);
BENCHMARK_CAPTURE(cold, tint_2x, tint2)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, asked_again, askedAgain);
BENCHMARK_CAPTURE(cold, asked_again, askedAgain)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, changed_tick, changedTick);
BENCHMARK_CAPTURE(cold, changed_tick, changedTick)->UseManualTime()->Iterations(coldTurns);
BENCHMARK_CAPTURE(hot, changed_tick_drawn_anew, changedTickDrawnAnew);
BENCHMARK_CAPTURE(cold, changed_tick_drawn_anew, changedTickDrawnAnew)
    ->UseManualTime()
    ->Iterations(coldTurns);
BENCHMARK(firstPicture)->Name("start/first_picture")->Unit(benchmark::kMillisecond);
BENCHMARK(lookUp)->Name("start/look_up_fonts")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantora

BENCHMARK_MAIN();
