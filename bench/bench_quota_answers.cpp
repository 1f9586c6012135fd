// SPDX-License-Identifier: MIT
//
// Decoding the answers of the two assistants, from an ordinary one of a few hundred
// bytes to the largest that the clients let through. The bytes per second of the sizes
// stand beside each other: they stay level while decoding is linear. The plain parse of
// the same bytes is what the JSON library alone takes.
#include <benchmark/benchmark.h>

#include <string>

#include "model/json.hpp"
#include "quota/claude/claude_usage_parser.hpp"
#include "quota/codex/weekly_quota_selector.hpp"

namespace {

using namespace vantora;

// As many categories as fill `size` bytes, one of them weekly.
std::string rateLimitsOf(std::size_t size) {
  std::string answer = R"({"accountId":"acc","rateLimitsByLimitId":{"codex":{"limitName":"Codex",)"
                       R"("primary":{"usedPercent":42,"windowDurationMins":10080}})";
  for (int index = 0; answer.size() + 150 < size; ++index) {
    answer += R"(,"category-)" + std::to_string(index) +
              R"(":{"limitId":"category","limitName":null,"primary":{"usedPercent":12.5,)"
              R"("windowDurationMins":300,"resetsAt":1790000000},"secondary":null})";
  }
  return answer + "}}";
}

// The windows after as many unknown members as fill `size` bytes.
std::string usageOf(std::size_t size) {
  std::string answer = R"({"rate_limits_available":true)";
  for (int index = 0; answer.size() + 250 < size; ++index) {
    answer +=
        R"(,"behaviour_)" + std::to_string(index) + R"(":{"count":12,"share":[0.5,"x",null]})";
  }
  return answer +
         R"(,"rate_limits":{"five_hour":{"utilization":12.5,"resets_at":"2026-09-21T18:00:00Z"},)"
         R"("seven_day":{"utilization":37,"resets_at":1790400000}}})";
}

template <typename Decode>
void run(benchmark::State& state, const std::string& answer, Decode decode) {
  if (!decode(answer)) {
    state.SkipWithError("the answer does not decode");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(decode(answer));
  }
  state.SetBytesProcessed(
      static_cast<std::int64_t>(static_cast<std::size_t>(state.iterations()) * answer.size()));
}

std::size_t sizeOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

void selectWeeklyQuota(benchmark::State& state) {
  run(state, rateLimitsOf(sizeOf(state)), [](const std::string& answer) {
    const auto selection = WeeklyQuotaSelector::select(answer, "codex");
    return selection && selection->reading;
  });
}

void parseRateLimitsAlone(benchmark::State& state) {
  run(state, rateLimitsOf(sizeOf(state)),
      [](const std::string& answer) { return parseJson(answer).has_value(); });
}

void parseClaudeUsage(benchmark::State& state) {
  run(state, usageOf(sizeOf(state)), [](const std::string& answer) {
    const auto parsed = ClaudeUsageParser::parseUsageResponse(answer);
    return parsed && std::holds_alternative<ClaudeUsageReading>(*parsed);
  });
}

void parseUsageAlone(benchmark::State& state) {
  run(state, usageOf(sizeOf(state)),
      [](const std::string& answer) { return parseJson(answer).has_value(); });
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(500)->Arg(100'000)->Arg(1'000'000);
}

BENCHMARK(selectWeeklyQuota)->Apply(sizes);
BENCHMARK(parseRateLimitsAlone)->Apply(sizes);
BENCHMARK(parseClaudeUsage)->Apply(sizes);
BENCHMARK(parseUsageAlone)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
