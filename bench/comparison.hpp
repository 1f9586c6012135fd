// SPDX-License-Identifier: MIT
//
// Times two works in turn in one run: what we do, and the bare system calls that no program can
// do without. "ratio" is the median of ours over the median of theirs.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vantora::bench {

/// Walks through more memory than the caches hold, which is how a program that runs once a
/// second finds the machine.
inline void flushCaches() {
  constexpr std::size_t moreThanAnyCache = std::size_t{64} << 20U;
  constexpr std::size_t cacheLine = 64;
  static std::vector<std::uint8_t> memory(moreThanAnyCache);
  for (std::size_t place = 0; place < memory.size(); place += cacheLine) {
    ++memory[place];
  }
  benchmark::ClobberMemory();
}

inline double median(std::vector<double> spans) {
  const auto middle = spans.begin() + static_cast<std::ptrdiff_t>(spans.size() / 2);
  std::nth_element(spans.begin(), middle, spans.end());
  return *middle;
}

template <typename Work>
double secondsFor(Work& work, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int call = 0; call < calls; ++call) {
    work();
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / calls;
}

/// One turn of ours and one of theirs an iteration; reports the medians and their ratio.
template <typename Ours, typename Theirs>
void compare(benchmark::State& state, bool isCold, Ours ours, Theirs theirs) {
  // Few enough that a busy machine seldom takes the processor away in between.
  const int calls = isCold ? 1 : 10;
  std::vector<double> ourSpans;
  std::vector<double> theirSpans;
  ours();
  theirs();
  for (auto _ : state) {
    if (isCold) {
      flushCaches();
    }
    ourSpans.push_back(secondsFor(ours, calls));
    if (isCold) {
      flushCaches();
    }
    theirSpans.push_back(secondsFor(theirs, calls));
    state.SetIterationTime(ourSpans.back());
  }
  constexpr double nanoseconds = 1e9;
  const double our = median(std::move(ourSpans));
  const double their = median(std::move(theirSpans));
  state.counters["ours_ns"] = our * nanoseconds;
  state.counters["bare_ns"] = their * nanoseconds;
  state.counters["ratio"] = our / their;
}

inline constexpr int turns = 300;

}  // namespace vantora::bench
