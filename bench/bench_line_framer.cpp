// SPDX-License-Identifier: MIT
//
// Framing costs the same per byte however small the pieces are and however long the
// line: compare ns/byte ("Time" over bytes_per_second) of the sizes with one another.
// A framer that looked at the waiting bytes again with each piece would take a million
// times as long for a megabyte a byte at a time as for a byte.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "process/line_framer.hpp"

namespace {

using vantora::LineFramer;

// One line of `size` bytes in pieces of `piece`.
void frame(benchmark::State& state, std::size_t size, std::size_t piece) {
  const std::string line = std::string(size - 1, 'x') + '\n';
  for ([[maybe_unused]] auto round : state) {
    LineFramer framer(1'000'000);
    std::size_t taken = 0;
    for (std::size_t at = 0; at < line.size(); at += piece) {
      if (!framer.append(std::string_view(line).substr(at, piece))) {
        state.SkipWithError("above the limit");
        return;
      }
      if (const auto found = framer.takeLine()) {
        taken += found->size() + 1;
      }
    }
    if (taken != line.size()) {
      state.SkipWithError("the line was not found");
      return;
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void OneLineAByteAtATime(benchmark::State& state) {
  frame(state, static_cast<std::size_t>(state.range(0)), 1);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(OneLineAByteAtATime)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Complexity(benchmark::oN);

void AMegabyteInPieces(benchmark::State& state) {
  frame(state, 1'000'000, static_cast<std::size_t>(state.range(0)));
}
BENCHMARK(AMegabyteInPieces)->Arg(1)->Arg(64)->Arg(4'096)->Arg(65'536)->Arg(1'000'000);

// Many short lines, which are taken as they come.
void AMegabyteOfShortLines(benchmark::State& state) {
  const auto piece = static_cast<std::size_t>(state.range(0));
  std::string text;
  while (text.size() < 1'000'000) {
    text += "{\"method\":\"remoteControl/status/changed\",\"params\":{}}\n";
  }
  text.resize(1'000'000);
  for ([[maybe_unused]] auto round : state) {
    LineFramer framer(1'000'000);
    for (std::size_t at = 0; at < text.size(); at += piece) {
      if (!framer.append(std::string_view(text).substr(at, piece))) {
        state.SkipWithError("above the limit");
        return;
      }
      while (const auto line = framer.takeLine()) {
        benchmark::DoNotOptimize(line->data());
      }
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(AMegabyteOfShortLines)->Arg(1)->Arg(65'536)->Arg(1'000'000);

}  // namespace

BENCHMARK_MAIN();
