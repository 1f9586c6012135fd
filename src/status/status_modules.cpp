// SPDX-License-Identifier: MIT
#include "status/status_modules.hpp"

#include "status/metric_formatter.hpp"

namespace vantora::StatusModules {
namespace {

void readLine(MetricID metric, const MetricSnapshot& snapshot, WallTime now, StatusLine& line) {
  line.metric = metric;
  line.text = MetricFormatter::text(metric, snapshot, now);
  line.hasReading = MetricFormatter::isReading(line.text);
  line.font = {};
}

}  // namespace

void read(const AppConfiguration& configuration, const MetricSnapshot& snapshot, WallTime now,
          std::vector<StatusModule>& modules) {
  std::size_t count = 0;
  for (std::size_t index = 0; index < configuration.modules.size(); ++index) {
    const ModuleConfiguration& module = configuration.modules[index];
    if (!module.isVisible(snapshot)) {
      continue;
    }
    if (count == modules.size()) {
      modules.emplace_back();
    }
    StatusModule& shown = modules[count++];
    shown.id = module.id;
    shown.index = index;
    readLine(module.top, snapshot, now, shown.top);
    readLine(module.bottom, snapshot, now, shown.bottom);
    shown.x = 0;
    shown.width = 0;
  }
  modules.resize(count);
}

void sign(const std::vector<StatusModule>& modules, std::string& signature) {
  // A UUID, three separators and two texts; longer texts cost one more allocation.
  constexpr std::size_t usualLength = 64;
  signature.clear();
  signature.reserve(modules.size() * usualLength);
  for (const StatusModule& module : modules) {
    if (!signature.empty()) {
      signature += ';';
    }
    module.id.appendTo(signature);
    signature += ':';
    signature += module.top.text;
    signature += '|';
    signature += module.bottom.text;
  }
}

std::string joinedLines(const StatusModule& module) {
  std::string text;
  text.reserve(module.top.text.size() + 1 + module.bottom.text.size());
  text += module.top.text;
  if (!text.empty() && !module.bottom.text.empty()) {
    text += ' ';
  }
  text += module.bottom.text;
  return text;
}

}  // namespace vantora::StatusModules
