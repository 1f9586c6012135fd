// SPDX-License-Identifier: MIT
#include "app/event_log.hpp"

#include <cstdlib>
#include <utility>

#include "model/metric.hpp"

namespace vantora {
EventLog::Level EventLog::levelOf(std::string_view name) {
  if (name == "info") {
    return Level::info;
  }
  return name == "debug" ? Level::debug : Level::none;
}

EventLog EventLog::fromEnvironment(Sink sink) {
  const char* level = std::getenv("VANTORA_LOG");
  return EventLog(levelOf(level != nullptr ? level : ""), std::move(sink));
}

EventLog::EventLog(Level level, Sink sink)
    : level_(sink != nullptr ? level : Level::none), sink_(std::move(sink)) {}

void EventLog::sampled(const MetricSnapshot& before, const MetricSnapshot& after) const {
  if (level_ == Level::none) {
    return;
  }
  for (const MetricID metric : after.samples.metrics()) {
    const MetricSample* now = after.samples.find(metric);
    const MetricSample* previous = before.samples.find(metric);
    const bool isMissing = now->quality != Quality::valid;
    const bool isSame = previous != nullptr && previous->quality == now->quality &&
                        (!isMissing || previous->source == now->source);
    if (!isSame) {
      info("leitura " + std::string(id(metric)) + ": " + std::string(rawText(now->quality)) + " (" +
           now->source + ")");
    }
  }
}

void EventLog::queried(std::string_view assistant, std::string_view before,
                       std::string_view after) const {
  if (before != after) {
    info("cotas do " + std::string(assistant) + ": " + std::string(before) + " → " +
         std::string(after));
  }
}

void EventLog::write(Level level, std::string_view line) const {
  if (writes(level)) {
    sink_(std::string(line));
  }
}

}  // namespace vantora
